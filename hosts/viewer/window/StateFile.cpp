#include "hosts/viewer/window/StateFile.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesFile.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/viewer/window/SceneContent.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

/// A node of any type, with children of any type: takes every state file.
class AnyNode : public OruProperties
{
public:
    AnyNode(OruModifiedGroup& sharedGroup, const QString& name, const QString& type)
        : OruProperties(sharedGroup)
        , group_(sharedGroup)
    {
        rename(name);
        setType(type);
    }

protected:
    OruProperties* makeChild(const QString& childName, const QString& childType) override
    {
        return new AnyNode(group_, childName, childType);
    }

private:
    OruModifiedGroup& group_;
};

/// A state and its models are often moved together.
QString whereItIs(const QString& model, const QString& state)
{
    const QString beside = QFileInfo(state).dir().filePath(QFileInfo(model).fileName());
    return QFileInfo::exists(model) || !QFileInfo::exists(beside) ? model : beside;
}

} // namespace

QStringList StateFile::modelsOf(const QString& file, QString* error)
{
    OruModifiedGroup group;
    AnyNode root(group, QStringLiteral("scene"), QStringLiteral("scene"));
    error->clear();
    if (!OruPropertiesFile::load(root, file, error)) {
        return {};
    }
    QStringList files;
    const OruProperties* const all = root.find(QStringLiteral("render/visualization"));
    for (unsigned int i = 0; all && i < all->size(); ++i) {
        QString name;
        all->at(i)->getValue(SceneContent::fileKey, name, QString());
        if (all->at(i)->type() == hostkit::ModelList::typeString && !name.isEmpty()) {
            files.append(whereItIs(name, file));
        }
    }
    if (files.isEmpty()) {
        *error = QStringLiteral("%1: names no model; --state puts it behind one").arg(file);
    }
    return files;
}

bool StateFile::looksLikeOne(const QString& file)
{
    constexpr qint64 headBytes = 200;
    QFile head(file);
    return QFileInfo(file).isFile() && head.open(QIODevice::ReadOnly) &&
           head.read(headBytes).contains("kelvar property tree");
}
