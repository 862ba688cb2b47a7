// The calibration dialog alone: points handed in as the main window would, values typed and
// buttons clicked as the user would, messages answered by script.
#include "calibration/frmcalibrate2.h"
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

using Written = std::vector<std::pair<QString, QString>>;

class CalibrationDialog : public ::testing::Test {
protected:
    test::ScriptedDialogs dialogs;
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
    void calculate() {
        w->Timer1_Timer();
        ASSERT_TRUE(w->cmdCalculate->isEnabled());
        click(w->cmdCalculate);
    }
};

TEST_F(CalibrationDialog, OnePointGivesTheNewScaleWithOffsetZeroAndCancelWritesNothing) {
    w->showCurrentFactors(2.0, 0.0);
    w->setScaleText("abc"); // not a number: the scale in effect stays
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblRawMax->text(), "25");
    // Typed, not yet confirmed: the dialog's own timer offers the calculation.
    w->txtNewValue2->setFocus();
    QTest::keyClicks(w->txtNewValue2, "100");
    ASSERT_TRUE(QTest::qWaitFor([this] { return w->cmdCalculate->isEnabled(); }, 2000));
    click(w->cmdCalculate); // the box loses the focus and its value is taken on the way
    EXPECT_EQ(w->lblNewScale->text(), "4");
    EXPECT_EQ(w->lblNewOffset->text(), "0.0");
    click(w->cmdCancel);
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

TEST_F(CalibrationDialog, ModeSwitchesKeepThePointsAndTheHiddenPointOneStillTakesClicks) {
    w->SetCursorValue(50.0);
    switchMode();
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    EXPECT_EQ(w->lblCursorValue1->text(), "");
    click(w->Option1[0]);
    switchMode();
    EXPECT_EQ(w->lblCursor1->text(), "Scaled Value");
    EXPECT_EQ(w->lblRawMax->text(), "50");
    w->SetCursorValue(30.0);
    EXPECT_EQ(w->lblCursorValue1->text(), "30");
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    click(w->lblCursor1);
    w->SetCursorValue(40.0);
    EXPECT_EQ(w->lblCursorValue2->text(), "40");
    w->close(); // the close box
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

// In two-point mode, where Tab moves to the empty point-1 box: putting the focus back must not
// have that box complain too.
TEST_F(CalibrationDialog, NewValuesMustBeNumbersAndTheFocusStays) {
    w->SetCursorValue(50.0);
    switchMode();
    click(w->lblCursor2);
    w->SetCursorValue(10.0);
    for (const auto& [text, key] : {std::pair("abc", Qt::Key_Tab), std::pair("", Qt::Key_Enter)}) {
        SCOPED_TRACE(key == Qt::Key_Tab ? "letters, leaving the box" : "empty, Enter");
        dialogs.messages.clear();
        type(w->txtNewValue2, text, key);
        EXPECT_EQ(QApplication::focusWidget(), w->txtNewValue2);
        w->Timer1_Timer();
        EXPECT_FALSE(w->cmdCalculate->isEnabled());
        ASSERT_EQ(dialogs.messages.size(), 1u);
        EXPECT_EQ(dialogs.messages[0].text, "Value must be numeric.");
    }
    type(w->txtNewValue2, "1e3");
    EXPECT_EQ(w->NewValue2, 1000);
    // Going over to the main window to pick a point is no leaving of the box.
    dialogs.messages.clear();
    type(w->txtNewValue2, "abc", Qt::Key_Backspace);
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(w->txtNewValue2, &away);
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CalibrationDialog, ResetAsksAndWritesOneAndZeroOnlyOnOK) {
    dialogs.messageAnswers = {QMessageBox::Cancel, QMessageBox::Ok};
    click(w->cmdClear);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "Set Offset = 0, and Scale = 1?");
    EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_TRUE(written.empty());
    EXPECT_FALSE(destroyed());
    click(w->cmdClear);
    EXPECT_EQ(written, (Written{{"1", "0"}}));
    EXPECT_TRUE(destroyed());
}

TEST_F(CalibrationDialog, TwoPointsGiveScaleAndOffsetOrNoResult) {
    switchMode();
    click(w->lblCursor2);
    w->SetCursorValue(10.0);
    click(w->lblCursorValue2);
    w->SetCursorValue(20.0);
    type(w->txtNewValue1, "0");
    type(w->txtNewValue2, "100");
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
        EXPECT_FALSE(w->cmdOK->isEnabled());
        EXPECT_TRUE(w->lblMsg->text().contains(why)) << w->lblMsg->text().toStdString();
    };
    w->SetCursorValue(10.0); // equal points after a good result: the old result goes too
    calculate();
    expectNoResult("must differ");
    switchMode(); // one point at raw 0
    w->SetCursorValue(0.0);
    calculate();
    expectNoResult("must differ");
    w->showCurrentFactors(0.0, 0.0); // a current scale of 0 hides every raw value
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblRawMax->text(), "");
    calculate();
    expectNoResult("scale is zero");
}

} // namespace
} // namespace trendax
