#pragma once

#include "Scene/controller/IOruSceneController.h"
#include "contracts/vis/IOruVisEventHandler.h"
#include "tests/scene/SceneFixture.h"

#include <boost/make_shared.hpp>

#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace kelvartest {

/// Everything that handlers and hosts hear, as one sequence; answers and reacts as a test says.
class CallLog
{
public:
    template <typename... Arguments>
    bool note(const std::string& call, Arguments... arguments)
    {
        std::ostringstream line;
        [[maybe_unused]] const char* separator = "";
        line << (text.empty() ? "" : " ") << call << '(';
        ((line << separator << arguments, separator = ","), ...);
        line << ')';
        text += line.str();
        react(call);
        return yes.count(call) != 0;
    }

    /// Runs what the test has set for that call, once.
    void react(const std::string& call)
    {
        const auto found = reactions.find(call);
        if (found != reactions.end()) {
            const std::function<void()> reaction = found->second;
            reactions.erase(found);
            reaction();
        }
    }

    std::string text;
    std::set<std::string> yes; ///< calls that are answered with true
    std::map<std::string, std::function<void()>> reactions;
};

/// An object's handler that notes its calls under a name.
class MockHandler : public IOruVisEventHandler
{
public:
    using Hit = const OruVisHitRecord&;
    using Builder = const OruStringBuilder&;

    MockHandler(CallLog& log, const std::string& name)
    {
        using namespace ::testing;
        const auto note = [&log, name](const char* operation) {
            return [&log, call = name + operation](Hit hit, auto&&...) { return log.note(call, hit.name); };
        };
        ON_CALL(*this, OnHoverEnter).WillByDefault(note(".enter"));
        ON_CALL(*this, OnHoverLeave).WillByDefault(note(".leave"));
        ON_CALL(*this, OnDrag).WillByDefault([&log, name](Hit hit, QPoint delta) {
            return log.note(name + ".drag", hit.name, delta.x(), delta.y());
        });
        ON_CALL(*this, OnRelease).WillByDefault(note(".release"));
        ON_CALL(*this, OnDrop).WillByDefault([&log, name](Hit hit, Hit target, IOruVisPropertyEdit*) {
            return log.note(name + ".drop", hit.name, target.name);
        });
        ON_CALL(*this, OnClick).WillByDefault(note(".click"));
    }

    MOCK_METHOD(bool, OnHoverEnter, (Hit, Builder, QString&), (override));
    MOCK_METHOD(bool, OnHoverLeave, (Hit, Builder, QString&), (override));
    MOCK_METHOD(bool, OnDrag, (Hit, QPoint), (override));
    MOCK_METHOD(bool, OnRelease, (Hit, IOruVisPropertyEdit*), (override));
    MOCK_METHOD(bool, OnDrop, (Hit, Hit, IOruVisPropertyEdit*), (override));
    MOCK_METHOD(bool, OnClick, (Hit, IOruVisPropertyEdit*), (override));
};

/// A host's controller that notes its calls under a name, with the names of the visualizations.
class MockHost : public IOruSceneController
{
public:
    using Hit = const OruVisHitRecord&;
    using Object = const OruVisualization*;

    MockHost(CallLog& log, const std::string& name)
    {
        const auto note = [&log, name](const char* operation) {
            return [&log, call = name + operation](Hit hit, Object object, auto&&...) {
                return log.note(call, hit.name, nameOf(object));
            };
        };
        ON_CALL(*this, OnHoverEnter).WillByDefault(note(".enter"));
        ON_CALL(*this, OnHoverLeave).WillByDefault(note(".leave"));
        ON_CALL(*this, OnDrag).WillByDefault([&log, name](Hit hit, Object object, QPoint delta) {
            return log.note(name + ".drag", hit.name, nameOf(object), delta.x(), delta.y());
        });
        ON_CALL(*this, OnRelease).WillByDefault(note(".release"));
        ON_CALL(*this, OnDrop).WillByDefault([&log, name](Hit hit, Hit target, Object from, Object to) {
            log.note(name + ".drop", hit.name, target.name, nameOf(from), nameOf(to));
        });
        ON_CALL(*this, OnClick).WillByDefault([&log, name](Hit hit, Object object, bool withModifier) {
            return log.note(name + ".click", hit.name, nameOf(object), withModifier);
        });
    }

    MOCK_METHOD(bool, OnHoverEnter, (Hit, Object, QString&), (override));
    MOCK_METHOD(bool, OnHoverLeave, (Hit, Object, QString&), (override));
    MOCK_METHOD(bool, OnDrag, (Hit, Object, QPoint), (override));
    MOCK_METHOD(bool, OnRelease, (Hit, Object), (override));
    MOCK_METHOD(void, OnDrop, (Hit, Hit, Object, Object), (override));
    MOCK_METHOD(bool, OnClick, (Hit, Object, bool), (override));

private:
    static std::string nameOf(Object object) { return object ? object->name().toStdString() : "null"; }
};

using Handler = ::testing::NiceMock<MockHandler>;
using Host = ::testing::NiceMock<MockHost>;

/// A scene in which two objects, one and two, can lie under the pointer, and a host that listens.
class DispatchTest : public SceneTest
{
protected:
    DispatchTest()
    {
        for (const auto& object : {one.get(), two.get()}) {
            object->rename(object == one.get() ? QStringLiteral("one") : QStringLiteral("two"));
            scene.render.visualizations.insert(object, true);
        }
        probe.pickAction = [this](const std::string& pass, const OruVisualization::SelectContext&,
                                  OruVisHitRecordList& hits) {
            if (pass == "select3d") {
                log.react("pick");
                report(hits);
            }
        };
        scene.controller().reset(host, scene.render);
        settle();
    }

    /// Puts what `under` says into the list of hits.
    void report(OruVisHitRecordList& hits) const
    {
        const struct
        {
            char key;
            unsigned int name;
            boost::shared_ptr<Handler> handler;
            const OruVisualization* object;
        } known[] = {
            {'A', 7, a, one.get()},        // an object
            {'B', 9, b, two.get()},        // another one
            {'S', 7, b, two.get()},        // another one under the same name
            {'N', 11, nullptr, two.get()}, // one without a handler
            {'I', 0xFFFFFF, b, two.get()}, // one under the name of no object
        };
        for (const auto& row : known) {
            if (row.key == under) {
                OruVisHitRecord record;
                record.distance = 0.5;
                record.name = row.name;
                hits.add(record, OruVisHitRecordList::Rank::Scene3d, 0.0, row.handler, row.object);
            }
        }
    }

    CallLog log;
    std::unique_ptr<Probe> one{new Probe(scene.group)};
    std::unique_ptr<Probe> two{new Probe(scene.group)};
    boost::shared_ptr<Handler> a{boost::make_shared<Handler>(log, "A")};
    boost::shared_ptr<Handler> b{boost::make_shared<Handler>(log, "B")};
    boost::shared_ptr<Host> host{boost::make_shared<Host>(log, "host")};
    boost::shared_ptr<Host> second{boost::make_shared<Host>(log, "second")};
    char under = '-';
};

} // namespace kelvartest
