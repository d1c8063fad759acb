#include "hosts/viewer/window/OwnFiles.h"

#include "contracts/vis/OruVisList.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/viewer/window/SceneContent.h"

OwnFiles::OwnFiles(hostkit::HostScene& host)
    : host_(host)
{
    const OruVisList& all = host_.scene().render.visualizations;
    for (unsigned int i = 0; i < all.size(); ++i) {
        if (all.at(i)->type() == hostkit::ModelList::typeString) {
            QString file;
            all.at(i)->getValue(SceneContent::fileKey, file, QString());
            files_.emplace_back(all.at(i)->name(), file);
        }
    }
}

OwnFiles::~OwnFiles()
{
    const OruVisList& all = host_.scene().render.visualizations;
    for (const auto& [name, file] : files_) {
        OruProperties* const list = all.childByName(name);
        QString told;
        if (list && list->getValue(SceneContent::fileKey, told, QString()) != file) {
            list->setValue(SceneContent::fileKey, file);
        }
    }
}
