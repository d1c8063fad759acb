#include "hosts/host/GlPlatform.h"
#include "tests/live/VirtualDisplay.h"

#include <QApplication>

#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    const kelvartest::VirtualDisplay display;
    hostkit::GlPlatform::prepare();
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    ::testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
#if defined(__SANITIZE_ADDRESS__)
    __lsan_do_leak_check(); // while the driver is loaded and its leaks can be told from ours
#endif
    return result;
}
