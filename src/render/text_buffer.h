#pragma once

#include <QString>
#include <QStringView>

#include <cstring>

namespace velino::render {

// An output buffer for documents assembled from many pieces: one allocation sized up
// front, plain copies afterwards, growth only when the estimate was short.
class TextBuffer {
public:
    explicit TextBuffer(qsizetype capacity) { grow(capacity); }

    void append(QStringView text) {
        if (text.isEmpty())
            return; // an empty view may carry no data pointer at all
        reserve(text.size());
        std::memcpy(cursor_, text.utf16(), static_cast<size_t>(text.size()) * sizeof(char16_t));
        cursor_ += text.size();
    }
    template <qsizetype N> void append(const char16_t (&fixed)[N]) {
        append(QStringView(fixed, N - 1));
    }
    void append(char16_t c) {
        reserve(1);
        *cursor_++ = c;
    }

    enum class LineFeeds { Kept, AsBreaks };
    // The five HTML entities, ampersand first; optionally every line feed as <br>.
    void appendEscaped(QStringView text, LineFeeds lineFeeds = LineFeeds::Kept);

    qsizetype size() const { return cursor_ - begin_; }
    QStringView view() const { return QStringView(begin_, size()); }
    void truncate(qsizetype size) { cursor_ = begin_ + size; }

    QString take() {
        buffer_.resize(size());
        return std::move(buffer_);
    }

private:
    void reserve(qsizetype extra) {
        if (end_ - cursor_ < extra)
            grow(size() + extra);
    }
    void grow(qsizetype needed);

    QString buffer_;
    char16_t *begin_ = nullptr;
    char16_t *cursor_ = nullptr;
    char16_t *end_ = nullptr;
};

} // namespace velino::render
