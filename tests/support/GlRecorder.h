#pragma once

#include <map>
#include <string>
#include <vector>

namespace kelvartest {

/// Sees the gl* calls of the libraries under test.
///
/// The test program defines the recorded gl* functions itself and forwards them, so calls out of the shared
/// libraries pass through here. While recording, each call is kept as one readable line, such as
/// "glEnable(GL_DEPTH_TEST)". The depths of the attribute and matrix stacks, glBegin and glEnd pairs and the
/// live GL objects are counted always.
class GlRecorder
{
public:
    static GlRecorder& instance();

    void start();
    std::vector<std::string> stop();

    /// Adds a call's line, or one of the test's own, while recording.
    void note(const std::string& line);

    /// What is wrong with the pairing of calls since the last reset; empty when all is balanced.
    std::string imbalance() const;
    void resetBalance();

    /// How many names of textures and buffers were generated and not deleted.
    int liveObjects() const { return live_; }

    /// Lets the GL have no room for the next so many buffers.
    void refuseBuffers(int count) { refused_ = count; }

    // Called by the recorded functions.
    bool recording() const { return recording_; }
    void matrixMode(unsigned mode) { mode_ = mode; }
    void pushMatrix(int step) { matrixDepth_[mode_] += step; }
    void pushAttributes() { savedModes_.push_back(mode_); }
    void popAttributes();
    void primitive(bool open);
    void objects(int count) { live_ += count; }
    bool refusesBuffer() { return refused_ > 0 && refused_-- > 0; }

private:
    bool recording_ = false;
    std::vector<std::string> lines_;
    unsigned mode_ = 0x1700;
    std::vector<unsigned> savedModes_;
    std::map<unsigned, int> matrixDepth_;
    bool primitiveOpen_ = false;
    std::string fault_;
    int live_ = 0;
    int refused_ = 0;
};

/// Records for the length of a scope.
class GlRecording
{
public:
    GlRecording() { GlRecorder::instance().start(); }
    ~GlRecording() { GlRecorder::instance().stop(); }
    GlRecording(const GlRecording&) = delete;
    GlRecording& operator=(const GlRecording&) = delete;

    std::vector<std::string> finish() { return GlRecorder::instance().stop(); }
};

/// The name of a GL enumerant that the tests know, else its number in hexadecimal.
std::string glName(unsigned value);

} // namespace kelvartest
