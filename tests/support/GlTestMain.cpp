#include <QGuiApplication>

#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    // A never shown window has a real default framebuffer under GLX only.
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
    QGuiApplication application(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
