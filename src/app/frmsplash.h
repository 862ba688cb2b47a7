#pragma once

#include <QDialog>

class QLabel;

namespace trendax {

// The about box: version, product name and artwork. Any key, or a click on the picture,
// closes it; clicks elsewhere do nothing. It has no buttons.
class frmSplash : public QDialog {
    Q_OBJECT

public:
    explicit frmSplash(QWidget* parent = nullptr);

    QLabel* lblVersion = nullptr;
    QLabel* lblProductName = nullptr;
    QLabel* Picture1 = nullptr;

    static QString productName();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace trendax
