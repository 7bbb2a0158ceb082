#include "mail_app_executor.h"

#include "apple_mail_executor.h"
#include "thunderbird_executor.h"

namespace velino {

MailPlatform currentMailPlatform() {
#ifdef Q_OS_MACOS
    return MailPlatform::MacOS;
#else
    return MailPlatform::Linux;
#endif
}

std::unique_ptr<MailAppExecutor> makeMailAppExecutor(MailPlatform platform,
                                                     ProgramLauncher &launcher,
                                                     FileSystem &fileSystem, IdGenerator &ids) {
    switch (platform) {
    case MailPlatform::MacOS:
        return std::make_unique<AppleMailExecutor>(launcher);
    case MailPlatform::Linux:
        break;
    }
    return std::make_unique<ThunderbirdExecutor>(launcher, fileSystem, ids);
}

} // namespace velino
