#include "contracts/vis/OruVisualization.h"
#include "hosts/widgets/PropertyModel.h"
#include "tests/widgets/WidgetsFixture.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QRegularExpression>

using namespace hostkit;
using namespace kelvartest;

namespace {

const QString listPath = "render/visualization";

/// The model of a view that is not shown, watched by Qt's own checks.
struct PropertyModelGL : WidgetsFixture
{
    OruVisList& list = view.host().scene().render.visualizations;
    PropertyModel model{view.window()};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QStringList signalled;

    PropertyModelGL()
    {
#if QT_VERSION >= QT_VERSION_CHECK(6, 4, 0)
        tester.setUseFetchMore(false); // it does so in the middle of an insertion, and complains of that
#endif
        QObject::connect(
            &model, &PropertyModel::rowsInserted,
            [&](const QModelIndex& above, int first, int last) { note("+", above, first, last); });
        QObject::connect(
            &model, &PropertyModel::rowsRemoved,
            [&](const QModelIndex& above, int first, int last) { note("-", above, first, last); });
        QObject::connect(&model, &PropertyModel::dataChanged, [&](const QModelIndex& first) {
            note("=", first.parent(), first.row(), first.row());
        });
    }

    /// Without the rows of a node that is opened, as the tester does everywhere.
    void note(const char* what, const QModelIndex& above, int first, int last)
    {
        if (*what == '+' && model.rowCount(above) == last - first + 1) {
            return;
        }
        signalled.append(what + above.data().toString() + ' ' + QString::number(last - first + 1));
    }

    /// What the model tells when it catches up.
    std::string told()
    {
        signalled.clear();
        model.update();
        return signalled.join(", ").toStdString();
    }

    OruVisualization& part(const char* name)
    {
        return list.child(name, "part");
    }

    QVariant valueOf(const QString& path, const char* key, int role = Qt::DisplayRole)
    {
        return model.find(path, key).siblingAtColumn(PropertyModel::ValueColumn).data(role);
    }

    /// The names of the rows below one, all the way down: "scene(pickSize render(...))".
    QString outline(const QModelIndex& index)
    {
        model.fetchMore(index);
        QStringList below;
        for (int row = 0; row < model.rowCount(index); ++row) {
            below.append(outline(model.index(row, 0, index)));
        }
        const QString name = index.data().toString();
        return below.isEmpty() ? name : name + '(' + below.join(' ') + ')';
    }
};

} // namespace

TEST_F(PropertyModelGL, FollowsEveryChangeByTheRowsThatItConcerns)
{
    model.find(listPath + "/cube", "visible");
    const QPersistentModelIndex cube2 = model.find(listPath + "/cube.2");
    const struct
    {
        const char* name;
        std::function<void()> change;
        const char* told;
    } rows[] = {
        {"nothing", [] {}, ""},
        {"a value of an open node", [&] { cube("cube").setValue("visible", "false"); }, "=cube 1"},
        {"a unit", [&] { cube("cube").string().setUnit("visible", "x"); }, "=cube 1"},
        {"a key more", [&] { cube("cube").setValue("added", "1"); }, "+cube 1"},
        {"a key less", [&] { cube("cube").string().remove("added"); }, "-cube 1"},
        {"a name", [&] { cube("cube.2").rename("second"); }, "=visualization 1"},
        {"nodes more", [&] { part("a"), part("b"), part("c"), part("d"); }, "+visualization 4"},
        {"nodes less, in two places", [&] { list.erase(&part("b")), list.erase(&part("d")); },
         "-visualization 1, -visualization 1"},
        {"one goes and another comes", [&] { list.erase(&part("a")), part("e"); },
         "-visualization 1, +visualization 1"},
        {"one goes to the end",
         [&] {
             OruProperties* const second = &cube("second");
             list.remove(second);
             list.insert(second, false);
         },
         "-visualization 2, +visualization 2"},
    };
    for (const auto& row : rows) {
        row.change();
        EXPECT_EQ(told(), row.told) << row.name;
    }
    EXPECT_THAT(outline(model.find(listPath)).toStdString(),
                testing::AllOf(testing::HasSubstr(" c("), testing::HasSubstr(" e("),
                               testing::HasSubstr(" second("), testing::Not(testing::HasSubstr(" a("))));
}

TEST_F(PropertyModelGL, ShowsKindsAndEditsByTheSceneSEditor)
{
    const struct
    {
        const char* key;
        const char* value;
        const char* stored;
        /// Empty: it is taken.
        const char* refused;
    } rows[] = {
        {"pickSize", "5", "5", ""},
        {"pickSize", "-1", "5", "\"pickSize\" must be a number from 0, not \"-1\""},
        {"background", "red", "red", ""},
        {"background", "reddish", "red", "\"background\" must be a color like #rrggbb, not \"reddish\""},
        {"decimalSeparator", "44", "44", ""},
    };
    std::string refused;
    QObject::connect(&model, &PropertyModel::refused,
                     [&](const QString& reason) { refused = reason.toStdString(); });
    for (const auto& row : rows) {
        refused.clear();
        const QModelIndex index = model.find("render", row.key).siblingAtColumn(PropertyModel::ValueColumn);
        EXPECT_EQ(model.setData(index, row.value), *row.refused == '\0');
        EXPECT_EQ(refused, row.refused);
        EXPECT_EQ(index.data(Qt::EditRole).toString().toStdString(), row.stored);
    }
    EXPECT_EQ(valueOf("render", "background", Qt::DecorationRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(valueOf("render", "decimalSeparator").toString(), "comma");

    const QModelIndex flag =
        model.find(listPath + "/cube", "visible").siblingAtColumn(PropertyModel::ValueColumn);
    EXPECT_EQ(flag.data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_TRUE(model.setData(flag, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_EQ(view.undo().edits().undoText(), "Hide cube");
    view.undo().edits().undo();
    model.update();
    EXPECT_EQ(flag.data(Qt::CheckStateRole).toInt(), Qt::Checked);
    while (view.undo().edits().canUndo()) {
        view.undo().edits().undo();
    }
    EXPECT_EQ(valueOf("render", "background", Qt::EditRole).toString(), "#ff38465a");

    cube("cube").rename("gone");
    EXPECT_EQ(list.erase(list["gone"]), true);
    EXPECT_FALSE(model.setData(flag, Qt::Unchecked, Qt::CheckStateRole)) << "the view has not caught up yet";
    view.window().renew();
    view.host().scene().find("render")->setValue("pickSize", "8");
    EXPECT_EQ(valueOf("render", "pickSize").toString(), "8") << "of the scene that is there then";
}

TEST_F(PropertyModelGL, FiltersByNamesKeysAndValuesAlsoWhatChanges)
{
    const auto filtered = [&](const char* words) {
        model.setFilter(words);
        return outline(model.index(0, 0)).remove(QRegularExpression("^[^(]*\\(|\\)$")).toStdString();
    };
    EXPECT_EQ(filtered("PICKSIZE"), "render(pickSize)");
    EXPECT_EQ(filtered("38465a"), "render(background)");
    EXPECT_EQ(filtered("cube.2").find("render(visualization(cube.2("), 0u);
    EXPECT_EQ(filtered("there is no such"), "scene.1");

    filtered("needle");
    part("hay").setValue("key", "a Needle");
    told();
    EXPECT_EQ(filtered("needle"), "render(visualization(hay(key)))");
    part("hay").setValue("key", "straw");
    part("needles").setValue("key", "straw");
    EXPECT_EQ(told(), "-visualization 1");
    EXPECT_EQ(outline(model.find(listPath)).toStdString().find("visualization(needles(key"), 0u);
    auto* const deep = new OruProperties(list.group);
    deep->rename("deep");
    deep->setValue("a", "needle");
    deep->setValue("b", "straw");
    part("needles").insert(deep, false);
    told();
    EXPECT_EQ(outline(model.find(listPath)).toStdString(), "visualization(needles(key visible deep(a b)))");
    part("needles").rename("thread");
    told();
    EXPECT_EQ(outline(model.find(listPath)).toStdString(), "visualization(thread(deep(a)))");
}

TEST_F(PropertyModelGL, MakesTheRowsThatAreLookedAt)
{
    for (int i = 0; i < 10000; ++i) {
        list.child("part " + QString::number(i), "part");
    }
    int asked = 0;
    PropertyModel fresh(view.window());
    QObject::connect(&fresh, &PropertyModel::rowsInserted,
                     [&](const QModelIndex&, int first, int last) { asked += last - first + 1; });
    const QModelIndex last = fresh.find(listPath + "/part 9999");
    ASSERT_TRUE(last.isValid());
    EXPECT_LT(asked, 10100) << "the nodes of the list, and no properties of theirs";
    EXPECT_TRUE(fresh.canFetchMore(last));
}
