#include "masked_text_accessibility.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QQuickItem>
#include <QQuickWindow>

#include <optional>

namespace velino::ui {

namespace {

// TextInput.echoMode: Normal, NoEcho, Password, PasswordEchoOnEdit.
constexpr int kNormalEcho = 0;
const QChar kDefaultMaskCharacter(0x25CF);

bool isMaskedInput(const QObject *object) {
    return object && object->inherits("QQuickTextInput") &&
           object->property("echoMode").toInt() != kNormalEcho;
}

QString maskOf(const QObject *input, const QString &text) {
    const QString character = input->property("passwordCharacter").toString();
    return QString(text.size(), character.isEmpty() ? kDefaultMaskCharacter : character.at(0));
}

// The object behind the Accessible attached properties of an item (name, description),
// if QML gave it one.
const QObject *accessibleAttached(const QObject *item) {
    const QObjectList &children = item->children();
    for (const QObject *child : children) {
        if (child->inherits("QQuickAccessibleAttached"))
            return child;
    }
    return nullptr;
}

class MaskedTextInputAccessible final : public QAccessibleObject,
                                        public QAccessibleTextInterface,
                                        public QAccessibleActionInterface {
public:
    explicit MaskedTextInputAccessible(QQuickItem *input) : QAccessibleObject(input) {}

    QQuickItem *input() const { return static_cast<QQuickItem *>(object()); }
    // What the screen shows: the mask characters (nothing with NoEcho).
    QString shownText() const { return input()->property("displayText").toString(); }

    QWindow *window() const override { return input()->window(); }

    // The nearest accessible item above, or the window at the top.
    QAccessibleInterface *parent() const override {
        QQuickWindow *window = input()->window();
        const QQuickItem *top = window ? window->contentItem() : nullptr;
        for (QQuickItem *item = input()->parentItem(); item; item = item->parentItem()) {
            if (item == top)
                return QAccessible::queryAccessibleInterface(window);
            if (QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(item))
                return iface;
        }
        return nullptr;
    }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }

    QString text(QAccessible::Text type) const override {
        const QObject *attached = accessibleAttached(input());
        switch (type) {
        case QAccessible::Name: {
            // Set in QML, Accessible.name would make Qt's own (unmasked) object for the
            // field before its echo mode is known: the placeholder, its visible label,
            // names it instead.
            const QString name = attached ? attached->property("name").toString() : QString();
            return name.isEmpty() ? input()->property("placeholderText").toString() : name;
        }
        case QAccessible::Description:
            return attached ? attached->property("description").toString() : QString();
        case QAccessible::Value:
            return shownText();
        default:
            return QString();
        }
    }
    QAccessible::Role role() const override { return QAccessible::EditableText; }
    QAccessible::State state() const override {
        QAccessible::State state;
        const QQuickItem *item = input();
        state.editable = !item->property("readOnly").toBool();
        state.readOnly = !state.editable;
        state.passwordEdit = true;
        state.focusable = true;
        state.focused = item->hasActiveFocus();
        state.disabled = !item->isEnabled();
        state.invisible = !item->isVisible() || !item->window() || !item->window()->isVisible();
        return state;
    }
    QRect rect() const override {
        const QQuickItem *item = input();
        if (!item->window() || !item->isVisible())
            return QRect();
        return QRect(item->mapToGlobal(QPointF(0, 0)).toPoint(),
                     QSize(int(item->width()), int(item->height())));
    }
    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        if (type == QAccessible::ActionInterface)
            return static_cast<QAccessibleActionInterface *>(this);
        return QAccessibleObject::interface_cast(type);
    }

    // Text: positions are those of the mask, one character per character typed.
    QString text(int startOffset, int endOffset) const override {
        return shownText().mid(startOffset, endOffset - startOffset);
    }
    int characterCount() const override { return int(shownText().size()); }
    int cursorPosition() const override { return input()->property("cursorPosition").toInt(); }
    void setCursorPosition(int position) override {
        input()->setProperty("cursorPosition", position);
    }
    void selection(int index, int *startOffset, int *endOffset) const override {
        const int start = input()->property("selectionStart").toInt();
        const int end = input()->property("selectionEnd").toInt();
        const bool selected = index == 0 && start != end;
        *startOffset = selected ? start : 0;
        *endOffset = selected ? end : 0;
    }
    int selectionCount() const override {
        return input()->property("selectionStart") != input()->property("selectionEnd") ? 1 : 0;
    }
    void addSelection(int startOffset, int endOffset) override {
        QMetaObject::invokeMethod(input(), "select", Q_ARG(int, startOffset),
                                  Q_ARG(int, endOffset));
    }
    void removeSelection(int) override { QMetaObject::invokeMethod(input(), "deselect"); }
    void setSelection(int, int startOffset, int endOffset) override {
        addSelection(startOffset, endOffset);
    }
    QRect characterRect(int) const override { return QRect(); }
    int offsetAtPoint(const QPoint &) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int offset, int *startOffset, int *endOffset) const override {
        *startOffset = offset;
        *endOffset = offset;
        return QString();
    }

    // Actions: taking the focus, as for every other field.
    QStringList actionNames() const override { return {setFocusAction()}; }
    void doAction(const QString &name) override {
        if (name == setFocusAction())
            input()->forceActiveFocus(Qt::OtherFocusReason);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }
};

QAccessibleInterface *maskedTextInputFactory(const QString &, QObject *object) {
    if (!isMaskedInput(object))
        return nullptr;
    return new MaskedTextInputAccessible(static_cast<QQuickItem *>(object));
}

QAccessible::UpdateHandler g_nextHandler = nullptr;

void maskTextEvents(QAccessibleEvent *event);

// Hands the event on as if no handler of ours were there.
void forward(QAccessibleEvent *event) {
    QAccessible::installUpdateHandler(g_nextHandler);
    QAccessible::updateAccessibility(event);
    QAccessible::installUpdateHandler(maskTextEvents);
}

void maskTextEvents(QAccessibleEvent *event) {
    QObject *input = event->object();
    if (!isMaskedInput(input)) {
        forward(event);
        return;
    }
    switch (event->type()) {
    case QAccessible::TextInserted: {
        const auto *inserted = static_cast<QAccessibleTextInsertEvent *>(event);
        QAccessibleTextInsertEvent masked(input, inserted->changePosition(),
                                          maskOf(input, inserted->textInserted()));
        forward(&masked);
        return;
    }
    case QAccessible::TextRemoved: {
        const auto *removed = static_cast<QAccessibleTextRemoveEvent *>(event);
        QAccessibleTextRemoveEvent masked(input, removed->changePosition(),
                                          maskOf(input, removed->textRemoved()));
        forward(&masked);
        return;
    }
    case QAccessible::TextUpdated: {
        const auto *updated = static_cast<QAccessibleTextUpdateEvent *>(event);
        QAccessibleTextUpdateEvent masked(input, updated->changePosition(),
                                          maskOf(input, updated->textRemoved()),
                                          maskOf(input, updated->textInserted()));
        forward(&masked);
        return;
    }
    default:
        forward(event);
    }
}

} // namespace

void installMaskedTextAccessibility() {
    QAccessible::removeFactory(maskedTextInputFactory);
    QAccessible::installFactory(maskedTextInputFactory);
    static const bool handlerInstalled = [] {
        g_nextHandler = QAccessible::installUpdateHandler(maskTextEvents);
        return true;
    }();
    Q_UNUSED(handlerInstalled);
}

} // namespace velino::ui
