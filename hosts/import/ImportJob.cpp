#include "hosts/import/ImportJob.h"

#include "hosts/import/ModelImporter.h"

#include <algorithm>
#include <utility>

namespace hostkit {

ImportJob::ImportJob(const QStringList& files)
    : fileCount_(static_cast<float>(std::max(1, static_cast<int>(files.size()))))
    , thread_([this, files] { work(files); })
{}

ImportJob::~ImportJob()
{
    cancel();
    if (thread_.joinable()) {
        thread_.join();
    }
}

float ImportJob::share() const
{
    const float done = static_cast<float>(filesDone_.load(std::memory_order_relaxed));
    return std::min(1.0f, (done + progress_.share()) / fileCount_);
}

std::vector<Model> ImportJob::take()
{
    thread_.join();
    if (error_) {
        std::rethrow_exception(error_);
    }
    return std::move(models_);
}

void ImportJob::work(const QStringList& files)
{
    try {
        for (const QString& file : files) {
            models_.push_back(ModelImporter::load(file, progress_));
            progress_.report(0.0f);
            filesDone_.fetch_add(1, std::memory_order_relaxed);
        }
    } catch (...) {
        error_ = std::current_exception();
    }
    finished_.store(true, std::memory_order_release);
}

} // namespace hostkit
