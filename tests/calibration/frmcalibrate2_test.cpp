// The calibration dialog alone: points handed in as the main window would, values typed and
// buttons clicked as the user would, messages answered by script.
#include "calibration/frmcalibrate2.h"
#include "storage/programtitle.h"
#include "support/scripteddialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
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
    void calculate() {
        w->Timer1_Timer();
        ASSERT_TRUE(w->cmdCalculate->isEnabled());
        click(w->cmdCalculate);
    }
};

TEST_F(CalibrationDialog, OpensInOnePointModeWithTheDesignTexts) {
    EXPECT_EQ(w->windowTitle(), "Trendax Calibration");
    const std::pair<QWidget*, const char*> tips[] = {
        {w->lblCursor1, "Click here then click the chart to select a value..."},
        {w->lblCursor2, "Click here then click the chart to select an offset value..."},
        {w->txtNewValue2, "Enter a new value here for Cursor Value 2 to calculate the Offset."},
        {w->txtNewValue1, "Enter a new value here for Cursor Value 1 to calculate the Scale."},
        {w->chkTwoPoint, "Check this box to enable 2 point calibration."},
        {w->cmdCalculate, "Click here to calculate the new Offset and Scale."},
        {w->cmdClear, "Reset the offset to 0, and the scale to 1."},
        {w->cmdCancel, "Cancel without saving changes."}};
    for (const auto& [widget, tip] : tips)
        EXPECT_EQ(widget->toolTip(), tip);
    EXPECT_EQ(w->lblCursor1->text(), "Scaled Maximum");
    EXPECT_EQ(w->Label4->text(), "Raw Maximum");
    EXPECT_EQ(w->lblMsg->text(), "Select low calibration point 1 from the chart.");
    EXPECT_EQ(w->cmdOK->text(), "&OK");
    EXPECT_TRUE(w->lblCursor1->font().bold());
    EXPECT_TRUE(w->Option1[1]->isChecked());
    using Widgets = std::initializer_list<QWidget*>;
    for (QWidget* hidden : Widgets{w->Option1[0], w->lblCursor2, w->lblCursorValue1,
                                   w->txtNewValue1, w->Label5, w->lblRawMin})
        EXPECT_FALSE(hidden->isVisible());
    for (QWidget* off : Widgets{w->txtNewValue2, w->cmdCalculate, w->cmdOK})
        EXPECT_FALSE(off->isEnabled());
    EXPECT_EQ(w->lblScale->text(), "1");
    EXPECT_EQ(w->lblOffset->text(), "0");
}

TEST_F(CalibrationDialog, OnePointWritesTheNewScaleWithOffsetZero) {
    w->showCurrentFactors(2.0, 0.0);
    w->setScaleText("abc"); // not a number: the scale in effect stays
    EXPECT_DOUBLE_EQ(w->CurScale, 2.0);
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    EXPECT_EQ(w->lblRawMax->text(), "25");
    EXPECT_EQ(w->lblMsg->text(), "Enter new values, then click the calculate button.");
    ASSERT_TRUE(w->txtNewValue2->isEnabled());

    // Typed, not yet confirmed: the dialog's own timer offers the calculation.
    w->txtNewValue2->setFocus();
    QTest::keyClicks(w->txtNewValue2, "100");
    QElapsedTimer waited;
    waited.start();
    while (!w->cmdCalculate->isEnabled() && waited.elapsed() < 2000)
        QTest::qWait(10);
    ASSERT_TRUE(w->cmdCalculate->isEnabled());
    click(w->cmdCalculate); // the box loses the focus and its value is taken on the way
    EXPECT_EQ(w->lblNewScale->text(), "4");
    EXPECT_EQ(w->lblNewOffset->text(), "0.0");
    ASSERT_TRUE(w->cmdOK->isEnabled());

    click(w->cmdOK);
    EXPECT_EQ(written, (Written{{"4", "0.0"}}));
    EXPECT_TRUE(destroyed());
}

TEST_F(CalibrationDialog, TwoPointsAreChosenByTheirRowsAndCancelWritesNothing) {
    switchMode();
    EXPECT_TRUE(w->lblCursorValue1->isVisible());
    click(w->lblCursor2);
    EXPECT_TRUE(w->Option1[0]->isChecked());
    EXPECT_TRUE(w->lblCursor2->font().bold());
    EXPECT_FALSE(w->lblCursor1->font().bold());
    w->SetCursorValue(10.0);
    EXPECT_EQ(w->lblCursorValue1->text(), "10");
    EXPECT_EQ(w->lblMsg->text(), "Select high calibration point 2 from the chart.");
    click(w->lblCursorValue2);
    EXPECT_TRUE(w->lblCursor1->font().bold());
    w->SetCursorValue(20.0);
    type(w->txtNewValue1, "0");
    type(w->txtNewValue2, "100");
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "10");
    EXPECT_EQ(w->lblNewOffset->text(), "-100");

    click(w->cmdCancel);
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

TEST_F(CalibrationDialog, SwitchingModesKeepsAOnePointPickAsPointTwo) {
    w->SetCursorValue(50.0);
    switchMode();
    EXPECT_EQ(w->lblCursorValue2->text(), "50");
    EXPECT_TRUE(w->Option1[1]->isChecked());
    EXPECT_EQ(w->lblCursorValue1->text(), "");
    switchMode();
    EXPECT_EQ(w->lblCursor1->text(), "Scaled Value");
    EXPECT_EQ(w->Label4->text(), "Raw Value");
    EXPECT_FALSE(w->Option1[1]->isVisible());
    EXPECT_FALSE(w->lblRawMin->isVisible());
    EXPECT_EQ(w->lblRawMax->text(), "50");

    w->close(); // the close box
    EXPECT_TRUE(destroyed());
    EXPECT_TRUE(written.empty());
}

TEST_F(CalibrationDialog, HiddenPointOneTakesClicksAfterADetourUntilRowTwoIsClicked) {
    switchMode();
    click(w->Option1[0]);
    switchMode();
    w->SetCursorValue(30.0);
    EXPECT_EQ(w->lblCursorValue1->text(), "30");
    EXPECT_EQ(w->lblCursorValue2->text(), "");
    click(w->lblCursor1);
    w->SetCursorValue(40.0);
    EXPECT_EQ(w->lblCursorValue1->text(), "30");
    EXPECT_EQ(w->lblCursorValue2->text(), "40");
}

TEST_F(CalibrationDialog, NewValuesMustBeNumbersAndTheFocusStays) {
    w->SetCursorValue(50.0);
    struct Row {
        const char* name;
        const char* text;
        Qt::Key key; // Enter, or Tab to leave the box
        bool refused;
    } rows[] = {{"letters, Enter", "abc", Qt::Key_Return, true},
                {"empty, Enter", "", Qt::Key_Enter, true},
                {"letters, leaving the box", "abc", Qt::Key_Tab, true},
                {"exponent", "1e3", Qt::Key_Return, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        dialogs.messages.clear();
        dialogs.icons.clear();
        w->NewValue2 = -1;
        type(w->txtNewValue2, row.text, row.key);
        if (row.refused) {
            ASSERT_EQ(dialogs.messages.size(), 1u);
            EXPECT_EQ(dialogs.messages[0].text, "Value must be numeric.");
            EXPECT_EQ(dialogs.messages[0].title, trendax::programTitle());
            EXPECT_EQ(dialogs.messages[0].buttons, QMessageBox::Ok);
            EXPECT_EQ(dialogs.icons[0], QMessageBox::Critical);
            EXPECT_EQ(w->NewValue2, -1);
        } else {
            EXPECT_TRUE(dialogs.messages.empty());
            EXPECT_EQ(w->NewValue2, 1000);
        }
        EXPECT_EQ(QApplication::focusWidget(), w->txtNewValue2);
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
    w->txtNewValue2->setText("abc");
    QApplication::sendEvent(w->txtNewValue2, &away);
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(CalibrationDialog, TimerOffersCalculateWhenTheModesBoxesHoldNumbers) {
    w->txtNewValue2->setText("abc");
    w->Timer1_Timer();
    EXPECT_FALSE(w->cmdCalculate->isEnabled());
    w->txtNewValue2->setText("5");
    w->Timer1_Timer();
    EXPECT_TRUE(w->cmdCalculate->isEnabled());
    switchMode();
    w->Timer1_Timer();
    EXPECT_FALSE(w->cmdCalculate->isEnabled());
    w->txtNewValue1->setText("-2.5");
    w->Timer1_Timer();
    EXPECT_TRUE(w->cmdCalculate->isEnabled());
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

TEST_F(CalibrationDialog, CalculationsWithoutAResultLeaveNothingToSave) {
    // Equal points after a good result: the old result goes too.
    switchMode();
    click(w->lblCursor2);
    w->SetCursorValue(10.0);
    click(w->lblCursor1);
    w->SetCursorValue(20.0);
    type(w->txtNewValue1, "0");
    type(w->txtNewValue2, "100");
    calculate();
    ASSERT_TRUE(w->cmdOK->isEnabled());
    w->SetCursorValue(10.0);
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "");
    EXPECT_EQ(w->lblNewOffset->text(), "");
    EXPECT_FALSE(w->cmdOK->isEnabled());
    EXPECT_TRUE(w->lblMsg->text().contains("must differ")) << w->lblMsg->text().toStdString();

    // A good pair again brings the result and the message line back.
    w->SetCursorValue(30.0);
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "5");
    EXPECT_TRUE(w->cmdOK->isEnabled());
    EXPECT_EQ(w->lblMsg->text(), "Enter new values, then click the calculate button.");

    // One point at raw 0.
    switchMode();
    w->SetCursorValue(0.0);
    calculate();
    EXPECT_FALSE(w->cmdOK->isEnabled());
    EXPECT_TRUE(w->lblMsg->text().contains("must differ")) << w->lblMsg->text().toStdString();

    // A current scale of 0 hides every raw value.
    w->showCurrentFactors(0.0, 0.0);
    w->SetCursorValue(50.0);
    EXPECT_EQ(w->lblRawMax->text(), "");
    EXPECT_TRUE(w->lblMsg->text().contains("scale is zero")) << w->lblMsg->text().toStdString();
    calculate();
    EXPECT_EQ(w->lblNewScale->text(), "");
    EXPECT_FALSE(w->cmdOK->isEnabled());
    EXPECT_TRUE(w->lblMsg->text().contains("scale is zero")) << w->lblMsg->text().toStdString();
}

} // namespace
} // namespace trendax
