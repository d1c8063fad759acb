// The file of a property tree: refused and nothing changed, or the tree saves, loads and saves to the same.

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertiesFile.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "fuzz/FuzzCheck.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

using kelvarfuzz::require;

namespace {

void requireKinds(const OruProperties& node)
{
    for (const QString& key : node.string().keys()) {
        QString text;
        node.getValue(key, text, QString());
        require(node.kind(key).accepts(text), "every value is of its property's kind");
    }
    for (unsigned int i = 0; i < node.size(); ++i) {
        requireKinds(*node.at(i));
    }
}

/// A small tree of nodes that read their properties in all types.
struct Tree
{
    Tree()
    {
        list.child("viewpoint", OruVisViewpoint::typeString);
        list.child("logo", OruVisImage::typeString);
        list.child("triad", OruVisTriad::typeString);
    }

    /// Reads what was loaded the way a frame does.
    void use()
    {
        list.bounds();
        if (const auto* viewpoint = dynamic_cast<OruVisViewpoint*>(list["viewpoint"])) {
            viewpoint->matrix.value();
        }
        if (const auto* logo = dynamic_cast<OruVisImage*>(list["logo"])) {
            logo->placeIn(QSize(400, 300), QSize(40, 30));
            logo->transparentColor.value();
        }
    }

    QByteArray saved(const QString& file)
    {
        QString error;
        require(OruPropertiesFile::save(list, file, &error), "a tree can be saved");
        QFile in(file);
        require(in.open(QIODevice::ReadOnly), "and read");
        return in.readAll();
    }

    OruModifiedGroup group;
    OruVisList list{group, "list"};
};

} // namespace

/// Qt 5.15's JSON parser loses a few bytes of what it has read when the text ends in an error.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libQt5Core.so";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QTemporaryDir folder;
    static const QString given = folder.filePath("given");
    static const QString kept = folder.filePath("kept");
    static const QByteArray untouched = Tree().saved(kept);
    QFile out(given);
    require(out.open(QIODevice::WriteOnly), "there is room for a file");
    out.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    out.close();

    Tree tree;
    QString error;
    if (!OruPropertiesFile::load(tree.list, given, &error)) {
        require(!error.isEmpty(), "there is a reason");
        require(tree.saved(kept) == untouched, "nothing has changed");
        return 0;
    }
    tree.use();
    requireKinds(tree.list);
    const QByteArray text = tree.saved(kept);
    Tree again;
    require(OruPropertiesFile::load(again.list, kept, &error), "what was saved loads");
    require(again.saved(kept) == text, "and is the same");
    return 0;
}
