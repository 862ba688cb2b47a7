#include "calibration/frmcalibrate2.h"

#include "storage/dialogs.h"
#include "storage/numbers.h"
#include "storage/programtitle.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace trendax {

namespace {

using calibration::formatFactor;
using calibration::Outcome;

const char* const notNumeric = "Value must be numeric.";

QString problemText(Outcome outcome) {
    switch (outcome) {
    case Outcome::PointsEqual:
        return QStringLiteral("The two points must differ: select points with different values.");
    case Outcome::NoPoint:
        return QStringLiteral("The point must differ from a raw value of 0: select another point.");
    case Outcome::CurrentScaleZero:
        return QStringLiteral("The current scale is zero: reset the calibration factors first.");
    case Outcome::Overflow:
        return QStringLiteral("The new factors are too large: select other points or values.");
    case Outcome::Ok:
        break;
    }
    return QString();
}

void setBold(QLabel* label, bool bold) {
    QFont font = label->font();
    font.setBold(bold);
    label->setFont(font);
}

QLabel* valueLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    label->setMinimumWidth(120);
    return label;
}

} // namespace

frmCalibrate2::frmCalibrate2(Dialogs& dialogs, FactorWriter writeFactors, QWidget* parent)
    : QWidget(parent, Qt::Tool), dialogs_(dialogs), writeFactors_(std::move(writeFactors)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Trendax Calibration"));
    createControls();
    placeControls();

    // The design state: one-point mode with point 2 selected; point 1's row and its selector
    // are hidden, and the captions stay the two-point ones until the box is first clicked.
    for (QWidget* w : std::initializer_list<QWidget*>{Option1[0], lblCursor2, lblCursorValue1,
                                                      txtNewValue1, Label5, lblRawMin})
        w->hide();
    Option1[1]->setChecked(true);
    setBold(lblCursor1, true);
    txtNewValue1->setEnabled(false);
    txtNewValue2->setEnabled(false);
    cmdCalculate->setEnabled(false);
    cmdOK->setEnabled(false);

    Timer1 = new QTimer(this);
    Timer1->setInterval(50);
    connect(Timer1, &QTimer::timeout, this, &frmCalibrate2::Timer1_Timer);
    Timer1->start();
}

frmCalibrate2::~frmCalibrate2() = default;

// ---- Controls and their places ----

void frmCalibrate2::createControls() {
    chkTwoPoint = new QCheckBox(QStringLiteral("2 Point Calibration"), this);
    chkTwoPoint->setToolTip(QStringLiteral("Check this box to enable 2 point calibration."));
    Label1 = new QLabel(QStringLiteral("Current Values"), this);
    Label2 = new QLabel(QStringLiteral("New Values"), this);
    for (QRadioButton*& option : Option1)
        option = new QRadioButton(this);

    lblCursor1 = new QLabel(QStringLiteral("Scaled Maximum"), this);
    lblCursor1->setToolTip(QStringLiteral("Click here then click the chart to select a value..."));
    lblCursorValue2 = valueLabel(this);
    txtNewValue2 = new QLineEdit(this);
    txtNewValue2->setToolTip(
        QStringLiteral("Enter a new value here for Cursor Value 2 to calculate the Offset."));
    lblCursor2 = new QLabel(QStringLiteral("Scaled Minimum"), this);
    lblCursor2->setToolTip(
        QStringLiteral("Click here then click the chart to select an offset value..."));
    lblCursorValue1 = valueLabel(this);
    txtNewValue1 = new QLineEdit(this);
    txtNewValue1->setToolTip(
        QStringLiteral("Enter a new value here for Cursor Value 1 to calculate the Scale."));

    Label4 = new QLabel(QStringLiteral("Raw Maximum"), this);
    lblRawMax = valueLabel(this);
    Label5 = new QLabel(QStringLiteral("Raw Minimum"), this);
    lblRawMin = valueLabel(this);
    Label6 = new QLabel(QStringLiteral("Scale"), this);
    lblScale = valueLabel(this);
    lblNewScale = valueLabel(this);
    Label7 = new QLabel(QStringLiteral("Offset"), this);
    lblOffset = valueLabel(this);
    lblNewOffset = valueLabel(this);

    cmdCalculate = new QPushButton(QStringLiteral("Calculate the New Scale and Offset"), this);
    cmdCalculate->setToolTip(QStringLiteral("Click here to calculate the new Offset and Scale."));
    lblMsg = new QLabel(QStringLiteral("Select low calibration point 1 from the chart."), this);
    cmdClear = new QPushButton(QStringLiteral("Reset Calibration Factors"), this);
    cmdClear->setToolTip(QStringLiteral("Reset the offset to 0, and the scale to 1."));
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel->setToolTip(QStringLiteral("Cancel without saving changes."));

    connect(chkTwoPoint, &QCheckBox::toggled, this, [this] { chkTwoPoint_Click(); });
    for (int i = 0; i < int(Option1.size()); ++i) {
        connect(Option1[size_t(i)], &QRadioButton::toggled, this, [this, i](bool checked) {
            if (checked)
                Option1_Click(i);
        });
    }
    connect(cmdCalculate, &QPushButton::clicked, this, &frmCalibrate2::cmdCalculate_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmCalibrate2::cmdOK_Click);
    connect(cmdClear, &QPushButton::clicked, this, &frmCalibrate2::cmdClear_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmCalibrate2::cmdCancel_Click);
    for (QObject* watched : std::initializer_list<QObject*>{
             lblCursor1, lblCursor2, lblCursorValue1, lblCursorValue2, txtNewValue1, txtNewValue2})
        watched->installEventFilter(this);
}

void frmCalibrate2::placeControls() {
    // Columns: point selector, row label, current value, new value.
    auto* grid = new QGridLayout;
    grid->addWidget(chkTwoPoint, 0, 1, 1, 3);
    grid->addWidget(Label1, 1, 2, Qt::AlignHCenter);
    grid->addWidget(Label2, 1, 3, Qt::AlignHCenter);
    grid->addWidget(Option1[1], 2, 0);
    grid->addWidget(lblCursor1, 2, 1);
    grid->addWidget(lblCursorValue2, 2, 2);
    grid->addWidget(txtNewValue2, 2, 3);
    grid->addWidget(Option1[0], 3, 0);
    grid->addWidget(lblCursor2, 3, 1);
    grid->addWidget(lblCursorValue1, 3, 2);
    grid->addWidget(txtNewValue1, 3, 3);
    grid->addWidget(Label4, 4, 1);
    grid->addWidget(lblRawMax, 4, 2);
    grid->addWidget(Label5, 5, 1);
    grid->addWidget(lblRawMin, 5, 2);
    grid->addWidget(Label6, 6, 1);
    grid->addWidget(lblScale, 6, 2);
    grid->addWidget(lblNewScale, 6, 3);
    grid->addWidget(Label7, 7, 1);
    grid->addWidget(lblOffset, 7, 2);
    grid->addWidget(lblNewOffset, 7, 3);
    grid->addWidget(cmdCalculate, 8, 1, 1, 3);
    grid->addWidget(lblMsg, 9, 1, 1, 3);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdClear);
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* outer = new QVBoxLayout(this);
    outer->addLayout(grid);
    outer->addLayout(buttons);
    // The window shrinks and grows with the rows that the mode shows.
    outer->setSizeConstraint(QLayout::SetFixedSize);
}

// ---- Current factors ----

void frmCalibrate2::showCurrentFactors(double scale, double offset) {
    setScaleText(formatFactor(scale));
    setOffsetText(formatFactor(offset));
}

void frmCalibrate2::setScaleText(const QString& text) {
    lblScale->setText(text);
    lblScale_Change();
}

void frmCalibrate2::setOffsetText(const QString& text) {
    lblOffset->setText(text);
    lblOffset_Change();
}

void frmCalibrate2::lblScale_Change() {
    if (const auto value = numbers::parse(lblScale->text()))
        CurScale = *value;
}

void frmCalibrate2::lblOffset_Change() {
    if (const auto value = numbers::parse(lblOffset->text()))
        CurOffset = *value;
}

// ---- Points ----

bool frmCalibrate2::pointOneSelected() const {
    return Option1[0]->isChecked();
}

void frmCalibrate2::SetCursorValue(double v) {
    const calibration::RawValue point = calibration::rawFromShown(v, CurScale, CurOffset);
    const QString rawText = point.outcome == Outcome::Ok ? formatFactor(point.raw) : QString();
    if (pointOneSelected()) {
        if (point.outcome == Outcome::Ok)
            RawMin = point.raw;
        lblRawMin->setText(rawText);
        setLabelText(lblCursorValue1, formatFactor(v));
        setMsg(QStringLiteral("Select high calibration point 2 from the chart."));
    } else {
        if (point.outcome == Outcome::Ok)
            RawMax = point.raw;
        lblRawMax->setText(rawText);
        setLabelText(lblCursorValue2, formatFactor(v));
        setMsg(QStringLiteral("Enter new values, then click the calculate button."));
    }
    // Kept up to date for either point, so that the points may be taken in any order.
    RawSpan = RawMax - RawMin;
    if (point.outcome != Outcome::Ok)
        showProblem(point.outcome);
}

void frmCalibrate2::setLabelText(QLabel* label, const QString& text) {
    label->setText(text);
    if (label == lblCursorValue1)
        lblCursorValue1_Change();
    else if (label == lblCursorValue2)
        lblCursorValue2_Change();
}

void frmCalibrate2::lblCursorValue1_Change() {
    txtNewValue1->setEnabled(true);
}

void frmCalibrate2::lblCursorValue2_Change() {
    txtNewValue2->setEnabled(true);
}

void frmCalibrate2::lblCursor1_Click() {
    Option1[1]->setChecked(true);
}

void frmCalibrate2::lblCursor2_Click() {
    Option1[0]->setChecked(true);
}

void frmCalibrate2::lblCursorValue1_Click() {
    Option1[0]->setChecked(true);
}

void frmCalibrate2::lblCursorValue2_Click() {
    Option1[1]->setChecked(true);
}

void frmCalibrate2::Option1_Click(int Index) {
    setBold(lblCursor2, Index == 0);
    setBold(lblCursor1, Index == 1);
}

// Only what is shown changes: points and values already taken stay, and so does the selected
// point, even when it is the now hidden point 1.
void frmCalibrate2::chkTwoPoint_Click() {
    const bool twoPoint = chkTwoPoint->isChecked();
    for (QWidget* w : std::initializer_list<QWidget*>{
             Option1[0], Option1[1], lblCursor2, lblCursorValue1, txtNewValue1, Label5, lblRawMin})
        w->setVisible(twoPoint);
    lblCursor1->setText(twoPoint ? QStringLiteral("Scaled Maximum")
                                 : QStringLiteral("Scaled Value"));
    Label4->setText(twoPoint ? QStringLiteral("Raw Maximum") : QStringLiteral("Raw Value"));
}

// ---- New values ----

bool frmCalibrate2::txtNewValue1_Validate() {
    return validate(txtNewValue1, NewValue1);
}

bool frmCalibrate2::txtNewValue2_Validate() {
    return validate(txtNewValue2, NewValue2);
}

bool frmCalibrate2::validate(QLineEdit* box, double& store) {
    const auto value = numbers::parse(box->text());
    if (!value) {
        validating_ = true;
        dialogs_.message(this, QString::fromLatin1(notNumeric), programTitle(), QMessageBox::Ok,
                         QMessageBox::Critical);
        box->setFocus(Qt::OtherFocusReason);
        validating_ = false;
        return false;
    }
    store = *value;
    ScaledSpan = NewValue2 - NewValue1;
    return true;
}

// Validates the new-value box that an event came from.
void frmCalibrate2::validateBox(QObject* box) {
    if (box == txtNewValue1)
        txtNewValue1_Validate();
    else if (box == txtNewValue2)
        txtNewValue2_Validate();
}

bool frmCalibrate2::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            if (watched == lblCursor1)
                lblCursor1_Click();
            else if (watched == lblCursor2)
                lblCursor2_Click();
            else if (watched == lblCursorValue1)
                lblCursorValue1_Click();
            else if (watched == lblCursorValue2)
                lblCursorValue2_Click();
        }
        break;
    case QEvent::FocusOut: {
        // Moving to the main window (to pick a point) or to a menu is no leaving of the box.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (validating_ || closing_ || !isVisible() || reason == Qt::ActiveWindowFocusReason ||
            reason == Qt::PopupFocusReason)
            break;
        validateBox(watched);
        break;
    }
    case QEvent::KeyRelease: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->isAutoRepeat() || (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter))
            break;
        validateBox(watched);
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void frmCalibrate2::Timer1_Timer() {
    // In front of the main window whenever the user works there (the dialog itself active is
    // in front already); never over a message box.
    const QWidget* main = parentWidget() ? parentWidget()->window() : nullptr;
    if (isVisible() && main && main->isActiveWindow() && !QApplication::activeModalWidget())
        raise();
    const bool second = numbers::parse(txtNewValue2->text()).has_value();
    if (chkTwoPoint->isChecked())
        cmdCalculate->setEnabled(second && numbers::parse(txtNewValue1->text()).has_value());
    else
        cmdCalculate->setEnabled(second);
}

// ---- Commands ----

void frmCalibrate2::cmdCalculate_Click() {
    const bool twoPoint = chkTwoPoint->isChecked();
    const calibration::Factors result =
        twoPoint ? calibration::twoPointFactors(CurScale, RawMin, RawMax, NewValue1, NewValue2)
                 : calibration::onePointFactors(CurScale, RawMax, NewValue2);
    if (result.outcome != Outcome::Ok) {
        // Nothing that could be written stays on show.
        lblNewScale->clear();
        lblNewOffset->clear();
        cmdOK->setEnabled(false);
        showProblem(result.outcome);
        return;
    }
    NewScale = result.scale;
    NewOffset = result.offset;
    lblNewScale->setText(formatFactor(NewScale));
    // One-point calibration drops the current offset.
    lblNewOffset->setText(twoPoint ? formatFactor(NewOffset) : calibration::onePointOffsetText);
    clearProblem();
    cmdOK->setEnabled(true);
}

void frmCalibrate2::cmdOK_Click() {
    writeAndClose(lblNewScale->text(), lblNewOffset->text());
}

void frmCalibrate2::cmdClear_Click() {
    if (dialogs_.message(this, QStringLiteral("Set Offset = 0, and Scale = 1?"), programTitle(),
                         QMessageBox::Ok | QMessageBox::Cancel,
                         QMessageBox::NoIcon) == QMessageBox::Ok)
        writeAndClose(QStringLiteral("1"), QStringLiteral("0"));
}

void frmCalibrate2::cmdCancel_Click() {
    close();
}

void frmCalibrate2::closeEvent(QCloseEvent* event) {
    closing_ = true;
    Timer1->stop();
    event->accept();
}

// The writer reloads the site; the dialog is out of sight by then and goes when it is done.
void frmCalibrate2::writeAndClose(const QString& scaleText, const QString& offsetText) {
    closing_ = true;
    Timer1->stop();
    hide();
    const QPointer<frmCalibrate2> self(this);
    if (writeFactors_)
        writeFactors_(scaleText, offsetText);
    if (self)
        close();
}

// ---- Message line ----

void frmCalibrate2::setMsg(const QString& text) {
    lblMsg->setText(text);
    problemShown_ = false;
}

void frmCalibrate2::showProblem(Outcome outcome) {
    if (!problemShown_)
        msgBeforeProblem_ = lblMsg->text();
    lblMsg->setText(problemText(outcome));
    problemShown_ = true;
}

void frmCalibrate2::clearProblem() {
    if (problemShown_)
        setMsg(msgBeforeProblem_);
}

} // namespace trendax
