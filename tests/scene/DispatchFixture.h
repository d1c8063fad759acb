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
    bool note(const std::string& call, const Arguments&... arguments)
    {
        std::ostringstream line;
        [[maybe_unused]] const char* separator = "";
        line << (text.empty() ? "" : " ") << call << '(';
        ((line << separator << shown(arguments), separator = ","), ...);
        text += line.str() + ')';
        if (whim) {
            return whim(call);
        }
        react(call);
        return yes.count(call) != 0;
    }

    /// Runs what the test has set for that call, once.
    void react(const std::string& call)
    {
        if (const auto reaction = reactions.extract(call)) {
            reaction.mapped()();
        }
    }

    std::string text;
    std::map<const OruVisualization*, std::string> names = {
        {nullptr, "null"}};    ///< of objects that may be dead
    std::set<std::string> yes; ///< calls that are answered with true
    std::map<std::string, std::function<void()>> reactions;
    std::function<bool(const std::string&)> whim; ///< if set, reacts to all calls and answers them
    const OruStringBuilder* builder = nullptr;    ///< what came with the last call that carries one
    QString* tooltip = nullptr;
    std::vector<const IOruVisPropertyEdit*> editors;

private:
    static int shown(int value) { return value; }
    static unsigned int shown(const OruVisHitRecord& hit) { return hit.name; }
    std::string shown(const OruVisualization* object) const
    {
        const auto known = names.find(object);
        return known != names.end() ? known->second : "unknown";
    }
};

/// Somebody who is called and notes it under a name.
class Noting
{
public:
    Noting(CallLog& log, const std::string& name)
        : log_(log)
        , name_(name)
    {}

protected:
    using Hit = const OruVisHitRecord&;
    using Builder = const OruStringBuilder&;
    using Editor = IOruVisPropertyEdit*;
    using Object = const OruVisualization*;

    template <typename... Arguments>
    bool note(const char* call, const Arguments&... arguments)
    {
        return log_.note(name_ + call, arguments...);
    }

    CallLog& log_;

private:
    std::string name_;
};

/// An object's handler.
class Handler : public IOruVisEventHandler, private Noting
{
public:
    using Noting::Noting;

    bool OnHoverEnter(Hit hit, Builder builder, QString& tooltip) override
    {
        log_.builder = &builder;
        log_.tooltip = &tooltip;
        return note(".enter", hit);
    }
    bool OnHoverLeave(Hit hit, Builder, QString& tooltip) override
    {
        log_.tooltip = &tooltip;
        return note(".leave", hit);
    }
    bool OnDrag(Hit hit, QPoint by) override { return note(".drag", hit, by.x(), by.y()); }
    bool OnRelease(Hit hit, Editor editor) override { return edited(editor, ".release", hit); }
    bool OnDrop(Hit hit, Hit target, Editor editor) override { return edited(editor, ".drop", hit, target); }
    bool OnClick(Hit hit, Editor editor) override { return edited(editor, ".click", hit); }

private:
    template <typename... Hits>
    bool edited(Editor editor, const Hits&... callAndHits)
    {
        log_.editors.push_back(editor);
        return note(callAndHits...);
    }
};

/// A host's controller.
class Host : public IOruSceneController, private Noting
{
public:
    using Noting::Noting;

    bool OnHoverEnter(Hit hit, Object object, QString& tooltip) override
    {
        log_.tooltip = &tooltip;
        return note(".enter", hit, object);
    }
    bool OnHoverLeave(Hit hit, Object object, QString&) override { return note(".leave", hit, object); }
    bool OnDrag(Hit hit, Object object, QPoint by) override
    {
        return note(".drag", hit, object, by.x(), by.y());
    }
    bool OnRelease(Hit hit, Object object) override { return note(".release", hit, object); }
    void OnDrop(Hit hit, Hit target, Object from, Object to) override
    {
        note(".drop", hit, target, from, to);
    }
    bool OnClick(Hit hit, Object object, bool modified) override
    {
        return note(".click", hit, object, modified);
    }
};

/// A scene in which two objects, one and two, can lie under the pointer, and a host that listens.
class DispatchTest : public SceneTest
{
protected:
    DispatchTest()
    {
        probe.pickAction = [this](const std::string& pass, const OruVisualization::SelectContext&,
                                  OruVisHitRecordList& hits) {
            if (pass == "select3d") {
                log.react("pick");
                report(hits);
            }
        };
        renew();
        settle();
    }

    /// Objects, handlers and a controller that nothing has happened to, and nothing under the pointer.
    void renew()
    {
        scene.controller() = OruSceneController();
        scene.controller().reset(host, scene.render);
        for (auto* object : {&one, &two}) {
            object->reset(new Probe(scene.group));
            (*object)->rename(object == &one ? QStringLiteral("one") : QStringLiteral("two"));
            scene.render.visualizations.insert(object->get(), true);
        }
        a = boost::make_shared<Handler>(log, "A");
        b = boost::make_shared<Handler>(log, "B");
        log = CallLog();
        log.names.insert({{one.get(), "one"}, {two.get(), "two"}});
        under = '-';
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
    std::unique_ptr<Probe> one;
    std::unique_ptr<Probe> two;
    boost::shared_ptr<Handler> a;
    boost::shared_ptr<Handler> b;
    boost::shared_ptr<Host> host{boost::make_shared<Host>(log, "host")};
    boost::shared_ptr<Host> second{boost::make_shared<Host>(log, "second")};
    char under = '-';
};

} // namespace kelvartest
