#pragma once

#include "mail_app_executor.h"

#include <QString>

namespace velino {

// Every text that names the desktop mail application or the computer: Apple Mail and "ce
// Mac" on macOS, Thunderbird and "cet ordinateur" elsewhere; the rest of each text is the
// same on both.
struct MailAppTexts {
    QString draftOpened;        // lastAction once the draft is open
    QString mailCopied;         // lastAction once the rich HTML is copied
    QString fallbackOpened;     // alert once the mailto: link is open instead
    QString applicationMissing; // bridge error 3
    QString bridgeUnavailable;  // bridge error 4
    QString automationRefused;  // bridge error reported without a message
    QString connectionStatus;   // status chip of the mail card
    QString connectionHint;     // hint of the mail card, caption of the summary card
    QString sectionTitle;       // title of the mail card
    QString sectionSubtitle;    // subtitle of the mail card
    QString summaryTitle;       // title of the summary card
    QString summaryValue;       // value of the summary card
};

const MailAppTexts &mailAppTexts(MailPlatform platform);

// The texts of the platform this build runs on.
inline const MailAppTexts &platformMailAppTexts() {
    return mailAppTexts(currentMailPlatform());
}

} // namespace velino
