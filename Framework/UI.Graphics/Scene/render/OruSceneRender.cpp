#include "Scene/render/OruSceneRender.h"

#include "Scene/core/internal/OruSceneTrace.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/math/CircleTable.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <QFile>

#include <cstdlib>

namespace {

/// Writes values straight to the node, and only those that change something. Sessions mean nothing to it.
class DefaultOruVisPropertyEditor final : public IOruVisPropertyEdit
{
public:
    void beginEdit() override {}

    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override
    {
        if (!owner || !properties) {
            return;
        }
        QString ignored;
        if (properties->getValue(name, ignored, QString()) == value) {
            return;
        }
        properties->setValue(name, value);
    }

    void endEdit() override {}
};

constexpr OruPropertyKind pickSizes = OruPropertyKind::of<float>().from(0.0);

/// Any number will do: its low 8 bits count.
constexpr OruPropertyKind::Choice separatorWords[] = {{"46", "full stop"}, {"44", "comma"}};
constexpr OruPropertyKind separators = OruPropertyKind::of<int>().naming(separatorWords);

constexpr OruPropertyKind::Choice digitWords[] = {{"-1", "as many as needed"}};
constexpr OruPropertyKind digitCounts = OruPropertyKind::of<int>().from(-1).naming(digitWords);

const unsigned int textSize = 7;
const char* const fontVariable = "TARNIS_GRAPHICS_FONTFACE_TTF";

/// The font that the environment names, if it can be found, else the default face. The result is the
/// variable's own value: the text renderer looks it up again.
QString chooseFontFace(const OruResource& resource)
{
    const char* const value = std::getenv(fontVariable);
    if (value) {
        QString face = QString::fromLocal8Bit(value);
        if (QFile::exists(resource.fontFile(face))) {
            return face;
        }
    }
    return QLatin1String("_default_");
}

} // namespace

const QString OruSceneRender::typeString = QLatin1String("scene.render");

OruSceneRender::OruSceneRender(OruModifiedGroup& modifiedGroup, const QString& fonts, const QString& images,
                               const QString& user)
    : OruProperties(modifiedGroup)
    , resource(fonts, images, user)
    , geometry(new OruOglGeometry(modifiedGroup))
    , cache(new OruOglCache(resource))
    , text(*cache, textSize, chooseFontFace(resource))
    , boxedText(text)
    , background(*this, QLatin1String("background"), QColor(Qt::black), QString())
    , textInfo(*this, QLatin1String("textInfo"), false, QString())
    , pickSize(*this, QLatin1String("pickSize"), 3.0f, QString())
    , decimalSeparator(*this, QLatin1String("decimalSeparator"), '.', QString())
    , significantDigits(*this, QLatin1String("significantDigits"), -1, QString())
    , visualizations(modifiedGroup, QLatin1String("vis.0"))
    , lights(modifiedGroup)
    , logo(modifiedGroup)
    , defaultEditor(new DefaultOruVisPropertyEditor)
{
    ORU_SCENE_TRACE();
    pickSize.setKind(pickSizes);
    decimalSeparator.setKind(separators);
    significantDigits.setKind(digitCounts);
    buildDefaultTree();
}

OruSceneRender::~OruSceneRender()
{
    ORU_SCENE_TRACE();
    clear();
    Kelvar::Math::CircleTable::clear();
}

/// The list gets its content and the logo its values before the list enters this node's tree, so whoever
/// watches the tree sees it arrive whole.
void OruSceneRender::buildDefaultTree()
{
    rename(typeString);
    setType(typeString);
    visualizations.rename(QLatin1String("visualization"));
    lights.rename(QLatin1String("lights"));
    geometry->rename(QLatin1String("geometry"));

    visualizations.child(QLatin1String("viewpoint"), OruVisViewpoint::typeString);
    visualizations.insert(&lights, true);
    OruVisLight& light = lights.child(QLatin1String("light.1"), OruVisLight::typeString);
    light.visible.setValue(true);
    logo.rename(QLatin1String("kelvar logo"));
    visualizations.insert(&logo, true);
    setLogoDefaults();

    flags |= defaultContent;
    OruProperties::insert(geometry.get(), true);
    OruProperties::insert(&visualizations, true);
}

/// Top right corner, 64 pixels high and never below 16, its white background transparent; hidden at first.
void OruSceneRender::setLogoDefaults()
{
    logo.visible.setValue(false);
    logo.file.setValue(QLatin1String("logoKelvar.png"));
    logo.transparentColor.setValue(QColor(Qt::white));
    logo.useTransparentColor.setValue(true);
    logo.pixelated.setValue(false);
    logo.order.setValue(1000);
    logo.alignment.setValue(Qt::AlignTop | Qt::AlignRight);
    logo.height.setValue(64.0f);
    logo.minimumHeight.setValue(16.0f);
    for (OruPropertyAdaptor<float>* margin :
         {&logo.marginBottom, &logo.marginTop, &logo.marginLeft, &logo.marginRight}) {
        margin->setValue(4.0f);
    }
    logo.unit.setValue(OruVisImage::Pixels);
}

void OruSceneRender::clear()
{
    glClearColor(background.value());
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    text.clear();
}

boost::shared_ptr<IOruVisPropertyEdit>& OruSceneRender::editor()
{
    if (customEditor) {
        return customEditor;
    }
    if (!defaultEditor) {
        defaultEditor.reset(new DefaultOruVisPropertyEditor);
    }
    return defaultEditor;
}

Kelvar::Math::NumberFormat OruSceneRender::numberFormat() const
{
    const int digits = significantDigits.value();
    const int separator = decimalSeparator.value();
    return Kelvar::Math::NumberFormat(static_cast<char>(separator & 0xff), 0, digits);
}
