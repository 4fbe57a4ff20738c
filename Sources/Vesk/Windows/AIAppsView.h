#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace vesk {

class MCPSetup;
class Pasteboard;

/// Lets AI applications read the notes: Claude Desktop's settings, and words to copy for others. Looks at the
/// settings whenever it is shown.
class AIAppsView final : public QWidget {
    Q_OBJECT

public:
    AIAppsView(const MCPSetup &setup, Pasteboard &pasteboard, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void showState();
    void add();

    const MCPSetup &m_setup;
    QLabel *m_status;
    QPushButton *m_add;
};

} // namespace vesk
