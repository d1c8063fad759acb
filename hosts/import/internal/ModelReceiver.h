#pragma once

#include "hosts/import/internal/ModelSource.h"
#include "hosts/mesh/Progress.h"
#include "hosts/mesh/Texture.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace hostkit {

class PipeReader;

/// Puts the messages of ReaderProtocol together. What makes no sense, such as a part of a mesh that was never
/// sent, ends the talk: see PipeReader.
class ModelReceiver
{
public:
    /// `in` is borrowed.
    explicit ModelReceiver(PipeReader& in)
        : in_(in)
    {}

    /// The whole model; `report` is told how far it is. Throws std::runtime_error with the reason, also when
    /// the other side gives one. To be called once.
    ModelSource receive(const ReportShare& report);

private:
    struct Row;

    void receiveTexture();
    void receiveMesh();
    void receiveNode();
    void receiveUse();
    void receiveFrame();
    void receiveProperty();
    void receiveNote();
    template <typename Enumeration>
    Enumeration choice(Enumeration last);
    std::uint32_t index(std::size_t count);

    PipeReader& in_;
    ModelSource model_;
    std::vector<std::shared_ptr<const Texture>> textures_;
    /// Of each node, below the model.
    std::vector<unsigned int> levels_{0};
};

} // namespace hostkit
