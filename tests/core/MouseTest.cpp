#include "contracts/core/OruMouse.h"
#include "tests/core/QtPrint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

using Kelvar::UI::Toolkit::KeyModifier;

namespace {

constexpr KeyModifier none = Kelvar::UI::Toolkit::ModifierNone;
constexpr KeyModifier first = Kelvar::UI::Toolkit::ModifierFirst;
constexpr KeyModifier second = Kelvar::UI::Toolkit::ModifierSecond;
constexpr OruMouse::Button pick = OruMouse::ButtonPick;
constexpr OruMouse::Button context = OruMouse::ButtonContext;
constexpr OruMouse::Button view = OruMouse::ButtonView;
constexpr auto unknown = static_cast<OruMouse::Button>(4);
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

using Feed = std::function<void(OruMouse&, KeyModifier, const QPoint&)>;

Feed press(OruMouse::Button button)
{
    return [=](OruMouse& m, KeyModifier modifier, const QPoint& at) { m.press(button, modifier, at); };
}

Feed release(OruMouse::Button button)
{
    return [=](OruMouse& m, KeyModifier modifier, const QPoint& at) { m.release(button, modifier, at); };
}

const Feed move = [](OruMouse& m, KeyModifier modifier, const QPoint& at) { m.move(at, modifier); };
const Feed turn = [](OruMouse& m, KeyModifier modifier, const QPoint& at) { m.wheel(-120, modifier, at); };
const Feed key = [](OruMouse& m, KeyModifier modifier, const QPoint&) { m.setModifier(modifier); };

/// One event and all that the mouse says after it. Held and ended presses are texts such as "1+0 3+0": button
/// and the modifier for which the question is answered by yes.
struct Step
{
    Feed feed;
    KeyModifier modifier;
    QPoint position;
    int wheel;
    QPoint delta;
    std::string down;
    std::string wasDown;
};

std::string answers(const OruMouse& mouse, bool (OruMouse::*question)(OruMouse::Button, KeyModifier) const)
{
    std::string text;
    for (int button = -1; button <= 5; ++button) {
        for (int modifier = -1; modifier <= 3; ++modifier) {
            if ((mouse.*question)(static_cast<OruMouse::Button>(button),
                                  static_cast<KeyModifier>(modifier))) {
                text += (text.empty() ? "" : " ") + std::to_string(button) + "+" + std::to_string(modifier);
            }
        }
    }
    return text;
}

} // namespace

TEST(OruMouse, AnswersAllQuestionsThroughASession)
{
    const Step steps[] = {
        {move, none, {10, 20}, 0, {10, 20}, "", ""},
        {press(pick), none, {12, 20}, 0, {2, 0}, "1+0", ""},
        {move, none, {15, 25}, 0, {3, 5}, "1+0", ""},
        {key, first, {15, 25}, 0, {0, 0}, "1+1", ""},
        {press(context), first, {15, 24}, 0, {0, -1}, "1+1 2+1", ""},
        {turn, first, {15, 24}, -120, {0, 0}, "1+1 2+1", ""},
        {move, second, {16, 24}, 0, {1, 0}, "1+2 2+2", ""},
        {release(pick), second, {16, 24}, 0, {0, 0}, "2+2", "1+0"},
        {press(unknown), none, {17, 24}, 0, {1, 0}, "2+0", ""},
        {release(context), none, {17, 24}, 0, {0, 0}, "", "2+1"},
        {press(view), second, {20, 20}, 0, {3, -4}, "3+2", "2+1"},
        {press(view), none, {21, 20}, 0, {1, 0}, "3+0", "2+1"},
        {release(pick), none, {21, 20}, 0, {0, 0}, "3+0", ""},
        {release(view), first, {22, 20}, 0, {1, 0}, "", "3+0"},
        {release(unknown), none, {lowest, highest}, 0, {lowest, highest - 20}, "", ""},
        {move, none, {highest, lowest}, 0, {highest, lowest}, "", ""},
    };
    OruMouse mouse;
    QPoint former;
    for (const Step& step : steps) {
        SCOPED_TRACE(&step - steps);
        step.feed(mouse, step.modifier, step.position);
        EXPECT_EQ(mouse.curpos(), step.position);
        EXPECT_EQ(mouse.oldpos(), former);
        EXPECT_EQ(mouse.mousedelta(), step.delta);
        EXPECT_EQ(mouse.wheeldelta(), step.wheel);
        EXPECT_EQ(mouse.curmodifier(), step.modifier);
        EXPECT_EQ(mouse.downcount(), std::count(step.down.begin(), step.down.end(), '+'));
        EXPECT_EQ(answers(mouse, &OruMouse::isdown), step.down);
        EXPECT_EQ(answers(mouse, &OruMouse::wasdown), step.wasDown);
        former = step.position;
    }
    EXPECT_EQ(mouse.downpos(pick), QPoint(12, 20));
    EXPECT_EQ(mouse.downpos(context), QPoint(15, 24));
    EXPECT_EQ(mouse.downpos(view), QPoint(21, 20)) << "the press that began anew";
    for (const int number : {0, 4, -1, lowest, highest}) {
        EXPECT_EQ(mouse.downpos(static_cast<OruMouse::Button>(number)), QPoint(0, 0)) << number;
    }
}
