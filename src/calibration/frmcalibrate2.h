#pragma once

#include "calibration/calibration.h"

#include <QString>
#include <QWidget>
#include <array>
#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTimer;

namespace trendax {

class Dialogs;

// The calibration dialog "Trendax Calibration" of a one-channel log. The user picks one point
// (or, with "2 Point Calibration", a low and a high point) on the chart, types the value each
// should read, calculates new factors and saves them with OK, or resets them to scale 1 and
// offset 0. It is modeless and stays in front of the main window, which hands it every cursor
// value through SetCursorValue. Every close destroys it.
class frmCalibrate2 : public QWidget {
public:
    // Saves new factors: the scale text and the offset text, exactly as shown.
    using FactorWriter = std::function<void(const QString& scaleText, const QString& offsetText)>;

    frmCalibrate2(Dialogs& dialogs, FactorWriter writeFactors, QWidget* parent = nullptr);
    ~frmCalibrate2() override;

    // Shows the factors in effect as lblScale and lblOffset (up to 15 significant digits).
    void showCurrentFactors(double scale, double offset);
    // Set the texts of lblScale and lblOffset; CurScale and CurOffset follow when they convert.
    void setScaleText(const QString& text);
    void setOffsetText(const QString& text);

    // A new cursor value from the chart, as displayed: sets the selected point.
    void SetCursorValue(double v);

    // Handlers, one per user event.
    void lblScale_Change();
    void lblOffset_Change();
    void lblCursorValue1_Change();
    void lblCursorValue2_Change();
    void lblCursor1_Click();
    void lblCursor2_Click();
    void lblCursorValue1_Click();
    void lblCursorValue2_Click();
    void Option1_Click(int Index);
    void chkTwoPoint_Click();
    // False, after telling the user, when the box does not hold a number; the caller keeps the
    // focus in the box.
    bool txtNewValue1_Validate();
    bool txtNewValue2_Validate();
    void Timer1_Timer();
    void cmdCalculate_Click();
    void cmdOK_Click();
    void cmdClear_Click();
    void cmdCancel_Click();

    // ---- Fields ----
    double CurScale = 0;
    double CurOffset = 0;
    double RawMin = 0;
    double RawMax = 0;
    double RawSpan = 0;
    double NewValue1 = 0;
    double NewValue2 = 0;
    double ScaledSpan = 0;
    double NewScale = 0;
    double NewOffset = 0;

    // ---- Controls ----
    QCheckBox* chkTwoPoint = nullptr;
    QLabel* Label1 = nullptr; // "Current Values"
    QLabel* Label2 = nullptr; // "New Values"
    // Option1 (0) selects point 1 (low), Option1 (1) point 2 (high).
    std::array<QRadioButton*, 2> Option1{};
    QLabel* lblCursor1 = nullptr;
    QLabel* lblCursorValue2 = nullptr;
    QLineEdit* txtNewValue2 = nullptr;
    QLabel* lblCursor2 = nullptr;
    QLabel* lblCursorValue1 = nullptr;
    QLineEdit* txtNewValue1 = nullptr;
    QLabel* Label4 = nullptr;
    QLabel* lblRawMax = nullptr;
    QLabel* Label5 = nullptr;
    QLabel* lblRawMin = nullptr;
    QLabel* Label6 = nullptr;
    QLabel* lblScale = nullptr;
    QLabel* lblNewScale = nullptr;
    QLabel* Label7 = nullptr;
    QLabel* lblOffset = nullptr;
    QLabel* lblNewOffset = nullptr;
    QPushButton* cmdCalculate = nullptr;
    QLabel* lblMsg = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
    QTimer* Timer1 = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void createControls();
    void placeControls();
    void validateBox(QObject* box);
    bool pointOneSelected() const;
    bool validate(QLineEdit* box, double& store);
    void setLabelText(QLabel* label, const QString& text);
    void showProblem(calibration::Outcome outcome);
    void clearProblem();
    void setMsg(const QString& text);
    void writeAndClose(const QString& scaleText, const QString& offsetText);

    Dialogs& dialogs_;
    FactorWriter writeFactors_;
    // Set while a failed validation tells the user and puts the focus back, so that the focus
    // moves this causes are not validated again; and while the dialog closes.
    bool validating_ = false;
    bool closing_ = false;
    // lblMsg's text from before a problem was shown, given back by the next good result.
    QString msgBeforeProblem_;
    bool problemShown_ = false;
};

} // namespace trendax
