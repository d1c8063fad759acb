#pragma once

#include "hosts/import/kelvar_import_api.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/Progress.h"

#include <QStringList>

#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace hostkit {

/// Loads models on a thread of its own, one file after the other, while the program stays alive.
class KELVAR_IMPORT_API ImportJob
{
public:
    /// Starts at once.
    explicit ImportJob(const QStringList& files);

    /// Stops the work and waits for it to end.
    ~ImportJob();
    ImportJob(const ImportJob&) = delete;
    ImportJob& operator=(const ImportJob&) = delete;

    bool finished() const { return finished_.load(std::memory_order_acquire); }

    /// The share of all files that is done, 0 to 1.
    float share() const;

    void cancel() { progress_.cancel(); }

    /// The models in the order of the files; waits for the end. Throws what the import threw:
    /// ModelImporter::Error, Progress::Cancelled. To be called once.
    std::vector<Model> take();

private:
    void work(const QStringList& files);

    const float fileCount_;
    Progress progress_;
    std::atomic<int> filesDone_{0};
    std::atomic<bool> finished_{false};
    std::vector<Model> models_;
    std::exception_ptr error_;
    std::thread thread_;
};

} // namespace hostkit
