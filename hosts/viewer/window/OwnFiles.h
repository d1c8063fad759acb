#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace hostkit {
class HostScene;
} // namespace hostkit

/// For the length of a scope in which a state is loaded: behind it the models name the files that they came
/// from, not those that the state was saved with.
class OwnFiles
{
public:
    /// `host` is borrowed and has to live as long.
    explicit OwnFiles(hostkit::HostScene& host);
    ~OwnFiles();
    OwnFiles(const OwnFiles&) = delete;
    OwnFiles& operator=(const OwnFiles&) = delete;

private:
    hostkit::HostScene& host_;
    /// Name of a model's list, and its file.
    std::vector<std::pair<QString, QString>> files_;
};
