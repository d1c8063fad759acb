// Scenes in different threads, each with a context of its own. The thread sanitizer (preset tsan) sees what
// they share; what each of them draws and picks is seen in any build.

// GLEW declares all of OpenGL and must come ahead of every other header that does.
#include <GL/glew.h>

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "contracts/vis/OruVisTriad.h"

#include <QThread>

#include <gtest/gtest.h>

#include <GL/glx.h>
#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

using Kelvar::UI::Toolkit::ModifierNone;

namespace {

/// Starts of GLEW that are under way, and the most that ever were.
std::atomic<int> glewStarts{0};
std::atomic<int> mostGlewStarts{0};

} // namespace

/// Comes ahead of the library's own and takes its time.
GLenum glewInit()
{
    mostGlewStarts = std::max(mostGlewStarts.load(), ++glewStarts);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const GLenum result = reinterpret_cast<decltype(&glewInit)>(dlsym(RTLD_NEXT, "glewInit"))();
    --glewStarts;
    return result;
}

namespace {

constexpr int width = 320;
constexpr int height = 240;

/// A context with an off-screen buffer, over its own connection to the display; current in the thread that
/// makes it and that ends it.
class OffscreenContext
{
public:
    OffscreenContext()
    {
        const int wanted[] = {
            GLX_DRAWABLE_TYPE, GLX_PBUFFER_BIT, GLX_DOUBLEBUFFER, True, GLX_DEPTH_SIZE, 24, 0};
        const int size[] = {GLX_PBUFFER_WIDTH, width, GLX_PBUFFER_HEIGHT, height, 0};
        int count = 0;
        GLXFBConfig* const configs =
            display_ ? glXChooseFBConfig(display_, DefaultScreen(display_), wanted, &count) : nullptr;
        if (count == 0) {
            throw std::runtime_error("no OpenGL to be had; run under Xvfb with Mesa");
        }
        buffer_ = glXCreatePbuffer(display_, configs[0], size);
        context_ = glXCreateNewContext(display_, configs[0], GLX_RGBA_TYPE, nullptr, True);
        glXMakeContextCurrent(display_, buffer_, buffer_, context_);
        XFree(configs);
    }
    ~OffscreenContext()
    {
        glXMakeContextCurrent(display_, None, None, nullptr);
        glXDestroyContext(display_, context_);
        glXDestroyPbuffer(display_, buffer_);
        XCloseDisplay(display_);
    }
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

private:
    Display* display_ = XOpenDisplay(nullptr);
    GLXPbuffer buffer_ = 0;
    GLXContext context_ = nullptr;
};

/// What a scene shows after a click on a label of the triad: text, an image, a captured picture.
QImage liveOnce()
{
    OruScene scene{QString(), QStringLiteral(KELVAR_RESOURCES), QString()};
    scene.find(QStringLiteral("render/visualization/kelvar logo"))->setValue("visible", "true");
    scene.render.visualizations.child("triad", OruVisTriad::typeString);
    OruSceneEventContext ctx;
    ctx.viewport = OruOglViewport(0, 0, width, height);
    scene.drawGl(ctx);
    const QPoint isometric(56, 16);
    ctx.mouse.press(OruMouse::ButtonPick, ModifierNone, isometric);
    scene.mousePress(ctx);
    ctx.mouse.release(OruMouse::ButtonPick, ModifierNone, isometric);
    scene.mouseRelease(ctx);
    EXPECT_TRUE(scene.mouseClick(ctx));
    ctx.tooltip = QStringLiteral("the same everywhere");
    QImage image;
    EXPECT_TRUE(scene.drawGl(ctx, image));
    scene.render.setValue("textInfo", "true");
    scene.drawGl(ctx);
    return image;
}

struct CountingSink : kelvardebug::sink
{
    void line(kelvardebug::channel, const std::string&) override { ++lines; }
    std::atomic<int> lines{0};
};

} // namespace

TEST(Threads, ScenesInThreadsOfTheirOwnKeepOutOfEachOthersWay)
{
    // Never ended, so that the driver stays loaded: the leak sanitizer tells its leaks by its name.
    static const auto* const loaded = new OffscreenContext;
    ASSERT_TRUE(loaded);
    // Qt takes the first thread it sees for the program's main thread, and there is no application here to be
    // first. Its image plugins would outlive one of the threads below and end the process with a crash.
    ASSERT_TRUE(QThread::currentThread());
    kelvardebug::logger& log = oru::debug_logger::debuglogger();
    const auto sink = std::make_shared<CountingSink>();
    log.setSink(sink);
    std::vector<std::vector<QImage>> seen(3);
    std::atomic<int> living{3};
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (std::vector<QImage>& images : seen) {
        threads.emplace_back([&images, &living] {
            const OffscreenContext context;
            for (int life = 0; life < 4; ++life) {
                images.push_back(liveOnce());
            }
            --living;
        });
    }
    while (living > 0) {
        log.setTracing(!log.tracing());
        log.setSink(sink);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    log.setTracing(false);
    log.setSink(nullptr);
    EXPECT_GT(sink->lines, 0);
    EXPECT_EQ(mostGlewStarts, 1) << "it keeps its functions for the whole process";
    for (const std::vector<QImage>& images : seen) {
        for (const QImage& image : images) {
            EXPECT_EQ(image, seen[0][0]);
        }
    }
    EXPECT_FALSE(seen[0][0].isNull());
}
