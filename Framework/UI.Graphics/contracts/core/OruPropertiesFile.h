#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QByteArray>
#include <QString>

class OruProperties;
struct OruPropertiesForeign;
struct OruPropertiesPlan;

/// A property tree as a JSON file.
///
///     {
///         "format": "kelvar property tree",
///         "version": 1,
///         "tree": {
///             "name": "scene.1",
///             "type": "scene",
///             "flags": 256,
///             "values": { "zoomMove": "1.1", "pickSize": { "value": "3", "unit": "px" } },
///             "children": [ ... nodes of the same form ... ]
///         }
///     }
///
/// Values are texts, so that no number loses a bit; a number or a flag written by hand is accepted too.
/// "type", "flags", "values" and "children" may be missing. Members that are not known here and children that
/// nobody can make are kept with the node and written back by the next save.
///
/// Both operations return false on failure and put the reason into `error`, if that is not null. What is
/// wrong with a file's content is told as "file:line:column: reason"; columns count characters from 1.
class KELVAR_CORE_API OruPropertiesFile
{
public:
    /// Largest file, in bytes, and deepest tree, in levels below the root, that is written or read.
    static constexpr int maximumBytes = 64 * 1024 * 1024;
    static constexpr int maximumDepth = 400;

    /// The version that save() writes; load() refuses files of a later one.
    static constexpr int Version = 1;

    /// Writes the tree below `root`, all of it or nothing: an existing file is replaced only by a whole one,
    /// and a pipe or a device is written to, as OruFileWriter does it. A value that is not of its property's
    /// kind is left out, so that load() takes the file, and told on the error stream.
    static bool save(const OruProperties& root, const QString& file, QString* error);

    /// Merges a file into the tree below `root`: values and units in the file overwrite, children that are
    /// missing are made by their parent's makeChild() and enter through its insert() as tree-owned; nothing
    /// is removed. The name of the root is not changed. Takes O(n), whatever the tree has and the file adds.
    ///
    /// The whole file is checked first, for which the children that are missing are made; one that is
    /// damaged, too large, too new, of another shape, that is no regular file, that gives a node another type
    /// than the tree has, or a value that is not of its property's kind, is refused, and the tree is as it
    /// was.
    static bool load(OruProperties& root, const QString& file, QString* error);

    /// What save() writes, and load() reads, as a text; `file` stands for its name in errors.
    static QByteArray text(const OruProperties& root);
    static bool load(OruProperties& root, const QByteArray& text, const QString& file, QString* error);

private:
    static void merge(OruProperties& node, OruPropertiesPlan& plan);
    static void mergeValues(OruProperties& node, const OruPropertiesPlan& plan);
    static void mergeChildren(OruProperties& node, OruPropertiesPlan& plan);
    static OruProperties* addChild(OruProperties& node, OruPropertiesPlan& plan);
    static OruPropertiesForeign& foreign(OruProperties& node);
};
