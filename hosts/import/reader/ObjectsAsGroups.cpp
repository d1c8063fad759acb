#include "hosts/import/reader/ObjectsAsGroups.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace hostkit {

namespace {

/// So few are compared in no time.
constexpr std::size_t fewObjects = 1000;

/// What assimp calls an object of faces that come ahead of all others.
constexpr std::string_view nameOfFirst = "defaultobject";

constexpr std::string_view blanks = " \t";

/// Where a line ends for assimp. A backslash there would join it with the next one.
constexpr std::string_view lineEnds("\n\r\0\f\\", 5);

/// By character whether it ends a line: every one of a file is asked for.
std::array<bool, 256> endsByCharacter()
{
    std::array<bool, 256> ends = {};
    for (const char c : lineEnds) {
        ends[static_cast<unsigned char>(c)] = true;
    }
    return ends;
}

/// The first word of a text and what is behind it.
std::pair<std::string_view, std::string_view> split(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::size_t length = std::min(text.find_first_of(blanks), text.size());
    return {text.substr(0, length), text.substr(length)};
}

/// Where the `o` of a line may be a `g`.
std::vector<std::size_t> find(std::string_view content)
{
    std::vector<std::size_t> found;
    std::unordered_set<std::string_view> names = {nameOfFirst};
    const std::array<bool, 256> ends = endsByCharacter();
    const auto endsLine = [&](char c) { return ends[static_cast<unsigned char>(c)]; };
    const char* const end = content.data() + content.size();
    for (const char* at = content.data(); at < end;) {
        const char* const stop = std::find_if(at, end, endsLine);
        if (*at == 'g' || (stop < end && *stop == '\\')) {
            return {};
        }
        if (*at == 'o') {
            const auto [command, rest] = split({at, static_cast<std::size_t>(stop - at)});
            const auto [name, more] = split(rest);
            // The name of a group is all of the line.
            if (!name.empty() && names.insert(name).second && more.empty()) {
                found.push_back(static_cast<std::size_t>(at - content.data()));
            }
        }
        at = stop + 1;
    }
    return found.size() < fewObjects ? std::vector<std::size_t>() : found;
}

/// None in a file that cannot be seen as a whole.
std::vector<std::size_t> findIn(const QString& name)
{
    QFile file(name);
    const uchar* const content = file.open(QIODevice::ReadOnly) ? file.map(0, file.size()) : nullptr;
    return content ? find({reinterpret_cast<const char*>(content), static_cast<std::size_t>(file.size())})
                   : std::vector<std::size_t>();
}

} // namespace

std::unique_ptr<Assimp::IOStream> ObjectsAsGroups::in(const QString& name, std::unique_ptr<IOStream> file)
{
    if (!file || QFileInfo(name).suffix().compare(QLatin1String("obj"), Qt::CaseInsensitive) != 0) {
        return file;
    }
    return std::unique_ptr<IOStream>(new ObjectsAsGroups(name, std::move(file)));
}

ObjectsAsGroups::ObjectsAsGroups(const QString& name, std::unique_ptr<IOStream> file)
    : name_(name)
    , file_(std::move(file))
{}

std::size_t ObjectsAsGroups::Read(void* buffer, std::size_t size, std::size_t count)
{
    if (!replaced_) {
        replaced_ = findIn(name_);
    }
    const std::size_t from = file_->Tell();
    const std::size_t read = file_->Read(buffer, size, count);
    const std::size_t to = file_->Tell();
    auto at = std::lower_bound(replaced_->begin(), replaced_->end(), from);
    for (; at != replaced_->end() && *at < to; ++at) {
        static_cast<char*>(buffer)[*at - from] = 'g';
    }
    return read;
}

std::size_t ObjectsAsGroups::Write(const void* /*buffer*/, std::size_t /*size*/, std::size_t /*count*/)
{
    return 0;
}

aiReturn ObjectsAsGroups::Seek(std::size_t offset, aiOrigin origin)
{
    return file_->Seek(offset, origin);
}

std::size_t ObjectsAsGroups::Tell() const
{
    return file_->Tell();
}

std::size_t ObjectsAsGroups::FileSize() const
{
    return file_->FileSize();
}

void ObjectsAsGroups::Flush() {}

} // namespace hostkit
