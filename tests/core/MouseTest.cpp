#include "contracts/core/OruMouse.h"
#include "tests/core/QtPrint.h"

#include <gtest/gtest.h>

#include <limits>

using Kelvar::UI::Toolkit::KeyModifier;
using Kelvar::UI::Toolkit::ModifierFirst;
using Kelvar::UI::Toolkit::ModifierNone;
using Kelvar::UI::Toolkit::ModifierSecond;

namespace {

constexpr OruMouse::Button pick = OruMouse::ButtonPick;
constexpr OruMouse::Button context = OruMouse::ButtonContext;
constexpr OruMouse::Button view = OruMouse::ButtonView;
constexpr auto unknownButton = static_cast<OruMouse::Button>(4);

enum class Feed
{
    press,
    release,
    move,
    wheel,
    modifier
};

/// One event and all that the mouse says after it. Held and ended presses are texts such as "1+0 3+0": button
/// and the modifier for which the question is answered by yes.
struct Step
{
    Feed feed;
    OruMouse::Button button;
    KeyModifier modifier;
    QPoint position;
    int wheel;
    QPoint delta;
    unsigned downcount;
    const char* down;
    const char* wasDown;
};

void apply(OruMouse& mouse, const Step& step)
{
    switch (step.feed) {
    case Feed::press:
        return mouse.press(step.button, step.modifier, step.position);
    case Feed::release:
        return mouse.release(step.button, step.modifier, step.position);
    case Feed::move:
        return mouse.move(step.position, step.modifier);
    case Feed::wheel:
        return mouse.wheel(step.wheel, step.modifier, step.position);
    case Feed::modifier:
        return mouse.setModifier(step.modifier);
    }
}

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
        {Feed::move, pick, ModifierNone, {10, 20}, 0, {10, 20}, 0, "", ""},
        {Feed::press, pick, ModifierNone, {12, 20}, 0, {2, 0}, 1, "1+0", ""},
        {Feed::move, pick, ModifierNone, {15, 25}, 0, {3, 5}, 1, "1+0", ""},
        {Feed::modifier, pick, ModifierFirst, {15, 25}, 0, {0, 0}, 1, "1+1", ""},
        {Feed::press, context, ModifierFirst, {15, 24}, 0, {0, -1}, 2, "1+1 2+1", ""},
        {Feed::wheel, pick, ModifierFirst, {15, 24}, -120, {0, 0}, 2, "1+1 2+1", ""},
        {Feed::move, pick, ModifierSecond, {16, 24}, 0, {1, 0}, 2, "1+2 2+2", ""},
        {Feed::release, pick, ModifierSecond, {16, 24}, 0, {0, 0}, 1, "2+2", "1+0"},
        {Feed::move, pick, ModifierNone, {17, 24}, 0, {1, 0}, 1, "2+0", "1+0"},
        {Feed::release, context, ModifierNone, {17, 24}, 0, {0, 0}, 0, "", "2+1"},
        {Feed::press, view, ModifierSecond, {20, 20}, 0, {3, -4}, 1, "3+2", "2+1"},
        {Feed::press, view, ModifierNone, {21, 20}, 0, {1, 0}, 1, "3+0", "2+1"},
        {Feed::release, pick, ModifierNone, {21, 20}, 0, {0, 0}, 1, "3+0", ""},
        {Feed::press, unknownButton, ModifierNone, {22, 20}, 0, {1, 0}, 1, "3+0", ""},
        {Feed::release, unknownButton, ModifierNone, {22, 20}, 0, {0, 0}, 1, "3+0", ""},
        {Feed::release, view, ModifierFirst, {22, 20}, 0, {0, 0}, 0, "", "3+0"},
    };
    OruMouse mouse;
    QPoint former;
    int row = 0;
    for (const Step& step : steps) {
        SCOPED_TRACE("step " + std::to_string(row++));
        apply(mouse, step);
        EXPECT_EQ(mouse.curpos(), step.position);
        EXPECT_EQ(mouse.oldpos(), former);
        EXPECT_EQ(mouse.mousedelta(), step.delta);
        EXPECT_EQ(mouse.wheeldelta(), step.wheel);
        EXPECT_EQ(mouse.curmodifier(), step.modifier);
        EXPECT_EQ(mouse.downcount(), step.downcount);
        EXPECT_EQ(answers(mouse, &OruMouse::isdown), step.down);
        EXPECT_EQ(answers(mouse, &OruMouse::wasdown), step.wasDown);
        former = step.position;
    }
    EXPECT_EQ(mouse.downpos(pick), QPoint(12, 20));
    EXPECT_EQ(mouse.downpos(context), QPoint(15, 24));
    EXPECT_EQ(mouse.downpos(view), QPoint(21, 20)) << "the press that began anew";
    for (const int number : {0, 4, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(mouse.downpos(static_cast<OruMouse::Button>(number)), QPoint(0, 0)) << number;
    }
}
