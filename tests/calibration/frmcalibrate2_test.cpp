// The calibration dialog alone: points handed in as the main window would, values typed and
// buttons clicked as the user would, messages answered by script.
#include "calibration/frmcalibrate2.h"
#include "storage/programtitle.h"
#include "support/scripteddialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <gtest/gtest.h>

namespace trendax {
namespace {

// Scripted dialogs that also keep each message's icon.
class IconDialogs : public test::ScriptedDialogs {
public:
    std::vector<QMessageBox::Icon> icons;
    QMessageBox::StandardButton message(QWidget* parent, const QString& text, const QString& title,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::Icon icon) override {
        icons.push_back(icon);
        return ScriptedDialogs::message(parent, text, title, buttons, icon);
    }
};

using Written = std::vector<std::pair<QString, QString>>;

class CalibrationDialog : public ::testing::Test {
protected:
    IconDialogs dialogs;
    Written written;
    QPointer<frmCalibrate2> w =
        new frmCalibrate2(dialogs, [this](const QString& scale, const QString& offset) {
            EXPECT_FALSE(w->isVisible()) << "the dialog is hidden before the site reloads";
            written.emplace_back(scale, offset);
        });

    CalibrationDialog() {
        w->show();
        w->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(w));
        w->showCurrentFactors(1.0, 0.0);
    }
    ~CalibrationDialog() override { delete w.data(); }

    bool destroyed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return w.isNull();
    }
    static void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }
    static void type(QLineEdit* box, const QString& text, Qt::Key key = Qt::Key_Return) {
        box->setFocus();
        box->clear();
        QTest::keyClicks(box, text);
        QTest::keyClick(box, key);
    }
    // A click on the check box itself, not on the empty space the layout gives it.
    void switchMode() {
        QTest::mouseClick(w->chkTwoPoint, Qt::LeftButton, {},
                          QPoint(4, w->chkTwoPoint->height() / 2));
    }
    // Two-point mode with point 1 at 10 and point 2 at 20, wanted 0 and 100.
    void twoPoints() {
        switchMode();
        click(w->lblCursor2);
        w->SetCursorValue(10.0);
        click(w->lblCursorValue2);
        w->SetCursorValue(20.0);
        type(w->txtNewValue1, "0");
        type(w->txtNewValue2, "100");
    }
    void calculate() {
        w->Timer1_Timer();
        ASSERT_TRUE(w->cmdCalculate->isEnabled());
        click(w->cmdCalculate);
    }
};

TEST_F(CalibrationDialog, OpensInOnePointModeWithPointTwoSelected) {
    EXPECT_EQ(w->lblCursor1->text(), "Scaled Maximum");
    EXPECT_EQ(w->Label4->text(), "Raw Maximum");
    EXPECT_EQ(w->lblMsg->text(), "Select low calibration point 1 from the chart.");
    EXPECT_TRUE(w->lblCursor1->font().bold());
    EXPECT_TRUE(w->Option1[1]->isChecked());
    using Widgets = std::initializer_list<QWidget*>;
    for (QWidget* hidden : Widgets{w->Option1[0], w->lblCursor2, w->lblCursorValue1,
                                   w->txtNewValue1, w->Label5, w->lblRawMin})
        EXPECT_FALSE(hidden->isVisible());
    for (QWidget* off : Widgets{w->txtNewValue2, w->cmdCalculate, w->cmdOK})
        EXPECT_FALSE(off->isEnabled());
}

TEST_F(CalibrationDialog, OnePointWritesTheNewScaleWithOffsetZero) {
    w->showCurrentFactors(2.0, 0.0);
    w->setScaleText("abc"); // not a number: the scale in effect stays
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblRawMax->text(), "25");
    EXPECT_EQ(w->lblMsg->text(), "Enter new values, then click the calculate button.");
    // Typed, not yet confirmed: the dialog's own timer offers the calculation.
    w->txtNewValue2->setFocus();
    QTest::keyClicks(w->txtNewValue2, "100");
    ASSERT_TRUE(QTest::qWaitFor([this] { return w->cmdCalculate->isEnabled(); }, 2000));
    click(w->cmdCalculate); // the box loses the focus and its value is taken on the way
    EXPECT_EQ(w->lblNewScale->text(), "4");
    EXPECT_EQ(w->lblNewOffset->text(), "0.0");
    ASSERT_TRUE(w->cmdOK->isEnabled());
    click(w->cmdOK);
    EXPECT_EQ(written, (Written{{"4", "0.0"}}));
    EXPECT_TRUE(destroyed());
}

TEST_F(CalibrationDialog, ModeSwitchesKeepThePointsAndTheHiddenPointOneStillTakesClicks) {
    w->SetCursorValue(50.0);
    switchMode();
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    EXPECT_EQ(w->lblCursorValue1->text(), "");
    EXPECT_TRUE(w->Option1[1]->isChecked());
    click(w->Option1[0]);
    EXPECT_TRUE(w->lblCursor2->font().bold());
    EXPECT_FALSE(w->lblCursor1->font().bold());
    switchMode();
    EXPECT_EQ(w->lblCursor1->text(), "Scaled Value");
    EXPECT_EQ(w->Label4->text(), "Raw Value");
    EXPECT_FALSE(w->lblRawMin->isVisible());
    EXPECT_EQ(w->lblRawMax->text(), "50");
    w->SetCursorValue(30.0);
    EXPECT_EQ(w->lblCursorValue1->text(), "30");
    EXPECT_EQ(w->lblMsg->text(), "Select high calibration point 2 from the chart.");
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    click(w->lblCursor1);
    w->SetCursorValue(40.0);
    EXPECT_EQ(w->lblCursorValue2->text(), "40");
    w->close(); // the close box
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

TEST_F(CalibrationDialog, NewValuesMustBeNumbersAndTheFocusStays) {
    w->SetCursorValue(50.0);
    const struct {
        const char* name;
        const char* text;
        Qt::Key key; // Enter, or Tab to leave the box
        bool refused;
    } rows[] = {{"letters, Enter", "abc", Qt::Key_Return, true},
                {"empty, Enter", "", Qt::Key_Enter, true},
                {"letters, leaving the box", "abc", Qt::Key_Tab, true},
                {"exponent", "1e3", Qt::Key_Return, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        dialogs.messages.clear();
        dialogs.icons.clear();
        w->NewValue2 = -1;
        type(w->txtNewValue2, row.text, row.key);
        EXPECT_EQ(QApplication::focusWidget(), w->txtNewValue2);
        w->Timer1_Timer();
        EXPECT_EQ(w->cmdCalculate->isEnabled(), !row.refused);
        EXPECT_EQ(w->NewValue2, row.refused ? -1 : 1000);
        if (!row.refused) {
            EXPECT_TRUE(dialogs.messages.empty());
            continue;
        }
        ASSERT_EQ(dialogs.messages.size(), 1u);
        EXPECT_EQ(dialogs.messages[0].text, "Value must be numeric.");
        EXPECT_EQ(dialogs.messages[0].title, trendax::programTitle());
        EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok);
        EXPECT_EQ(dialogs.icons[0], QMessageBox::Critical);
    }

    // Two-point mode: Tab moves to the empty point-1 box, and putting the focus back must not
    // have that box complain too.
    switchMode();
    click(w->lblCursor2);
    w->SetCursorValue(10.0);
    dialogs.messages.clear();
    type(w->txtNewValue2, "abc", Qt::Key_Tab);
    EXPECT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(QApplication::focusWidget(), w->txtNewValue2);

    // Going over to the main window to pick a point is no leaving of the box.
    dialogs.messages.clear();
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(w->txtNewValue2, &away);
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CalibrationDialog, ResetAsksAndWritesOneAndZeroOnlyOnOK) {
    dialogs.messageAnswers = {QMessageBox::Cancel, QMessageBox::Ok};
    click(w->cmdClear);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Set Offset = 0, and Scale = 1?");
    EXPECT_EQ(dialogs.messages[0].title, trendax::programTitle());
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(dialogs.icons[0], QMessageBox::NoIcon);
    EXPECT_TRUE(written.empty());
    EXPECT_FALSE(destroyed());
    EXPECT_TRUE(w->isVisible());
    click(w->cmdClear);
    EXPECT_EQ(written, (Written{{"1", "0"}}));
    EXPECT_TRUE(destroyed());
}

TEST_F(CalibrationDialog, TwoPointsGiveScaleAndOffsetOrNoResultAndCancelWritesNothing) {
    twoPoints();
    EXPECT_EQ(w->lblRawMin->text(), "10");
    EXPECT_TRUE(w->Option1[1]->isChecked());
    EXPECT_TRUE(w->lblCursor1->font().bold());
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "10");
    EXPECT_EQ(w->lblNewOffset->text(), "-100");
    w->txtNewValue1->clear();
    w->Timer1_Timer();
    EXPECT_FALSE(w->cmdCalculate->isEnabled()) << "two-point mode needs both values";
    type(w->txtNewValue1, "0");

    const auto expectNoResult = [this](const char* why) {
        SCOPED_TRACE(why);
        EXPECT_EQ(w->lblNewScale->text(), "");
        EXPECT_EQ(w->lblNewOffset->text(), "");
        EXPECT_FALSE(w->cmdOK->isEnabled());
        EXPECT_TRUE(w->lblMsg->text().contains(why)) << w->lblMsg->text().toStdString();
    };
    // Equal points after a good result: the old result goes too.
    w->SetCursorValue(10.0);
    calculate();
    expectNoResult("must differ");
    // One point at raw 0.
    switchMode();
    w->SetCursorValue(0.0);
    calculate();
    expectNoResult("must differ");
    // A current scale of 0 hides every raw value.
    w->showCurrentFactors(0.0, 0.0);
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblRawMax->text(), "");
    calculate();
    expectNoResult("scale is zero");
    // A good point again brings the result and the message line back; Cancel still writes nothing.
    w->showCurrentFactors(1.0, 0.0);
    w->SetCursorValue(50.0);
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "2");
    EXPECT_TRUE(w->cmdOK->isEnabled());
    EXPECT_EQ(w->lblMsg->text(), "Enter new values, then click the calculate button.");
    click(w->cmdCancel);
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

} // namespace
} // namespace trendax
