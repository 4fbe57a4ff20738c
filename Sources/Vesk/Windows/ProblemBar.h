#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace vesk {

class SettingsStore;

/// Says above every page what is wrong with the settings file, and replaces one that makes no sense when the
/// person says so. Takes no room while all is well.
class ProblemBar final : public QWidget {
    Q_OBJECT

public:
    explicit ProblemBar(SettingsStore &settings, QWidget *parent = nullptr);

private:
    void showState();
    void askToReplace();

    SettingsStore &m_settings;
    QLabel *m_sentence;
    QPushButton *m_replace;
};

} // namespace vesk
