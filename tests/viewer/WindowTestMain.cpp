#include "hosts/host/GlPlatform.h"
#include "tests/live/VirtualDisplay.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    const QTemporaryDir settings; // those of the person who runs the tests stay as they are
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    const kelvartest::VirtualDisplay display;
    hostkit::GlPlatform::prepare();
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvar"));
    QCoreApplication::setApplicationName(QStringLiteral("kelvar-view-test"));
    ::testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
#if defined(__SANITIZE_ADDRESS__)
    __lsan_do_leak_check(); // while the driver is loaded and its leaks can be told from ours
#endif
    return result;
}
