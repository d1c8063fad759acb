#include "hosts/host/GlPlatform.h"
#include "tests/live/VirtualDisplay.h"

#include <QGuiApplication>

#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    const kelvartest::VirtualDisplay display;
    // The programs that are started end without their driver, whose leaks can't be told from theirs then.
    qputenv("ASAN_OPTIONS", qgetenv("ASAN_OPTIONS") + ":detect_leaks=0");
    hostkit::GlPlatform::prepare();
    QGuiApplication application(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
#if defined(__SANITIZE_ADDRESS__)
    __lsan_do_leak_check(); // while the driver is loaded and its leaks can be told from ours
#endif
    return result;
}
