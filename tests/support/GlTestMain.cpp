#include <QGuiApplication>

#include <gmock/gmock.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    // A never shown window has a real default framebuffer under GLX only.
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
    QGuiApplication application(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
#if defined(__SANITIZE_ADDRESS__)
    // Once the application is gone the driver is unloaded, and its leaks can't be told from ours any more.
    __lsan_do_leak_check();
#endif
    return result;
}
