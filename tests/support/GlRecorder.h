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

    /// Adds a line of the test's own between the calls, while recording.
    void note(const std::string& line);

    /// What is wrong with the pairing of calls since the last reset; empty when all is balanced.
    std::string imbalance() const;
    void resetBalance();

    /// Names of GL objects of a kind ("texture", "buffer", ...) that were generated and not deleted.
    int live(const std::string& kind) const;
    int liveObjects() const;

    // Called by the recorded functions.
    bool recording() const { return recording_; }
    void call(const std::string& line);
    void matrixMode(unsigned mode) { mode_ = mode; }
    void pushMatrix(int step) { matrixDepth_[mode_] += step; }
    void pushAttributes(int step, unsigned savedMode);
    void primitive(bool open);
    void objects(const std::string& kind, int count) { live_[kind] += count; }
    unsigned currentMode() const { return mode_; }

private:
    bool recording_ = false;
    std::vector<std::string> lines_;
    unsigned mode_ = 0x1700;
    std::vector<unsigned> savedModes_;
    int attributeDepth_ = 0;
    std::map<unsigned, int> matrixDepth_;
    bool primitiveOpen_ = false;
    std::string fault_;
    std::map<std::string, int> live_;
};

/// Records for the length of a scope.
class GlRecording
{
public:
    GlRecording() { GlRecorder::instance().start(); }
    ~GlRecording() { finish(); }
    GlRecording(const GlRecording&) = delete;
    GlRecording& operator=(const GlRecording&) = delete;

    /// Stops recording and gives the lines; later calls give the same.
    const std::vector<std::string>& finish();

private:
    bool finished_ = false;
    std::vector<std::string> lines_;
};

/// The name of a GL enumerant that the tests know, else its number in hexadecimal.
std::string glName(unsigned value);

} // namespace kelvartest
