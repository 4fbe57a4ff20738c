#pragma once

#include "Foundation/Config.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>

#include <functional>

/// The small parts that pages are made of. Main thread; each belongs to its Qt parent.
namespace vesk {

class SettingsStore;

/// A text that wraps and insists on the room for all of its lines: Qt's own label is content with one, and a
/// small window would cut the others off.
class Paragraph : public QLabel {
    Q_OBJECT

public:
    explicit Paragraph(const QString &text = {}, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int m_width = 0; ///< as last laid out; before that, nobody knows how many lines there are
};

/// A paragraph that explains, quieter than what it explains but readable in every palette.
class HintLabel final : public Paragraph {
    Q_OBJECT

public:
    explicit HintLabel(const QString &text = {}, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateColour();
};

/// A title above controls that belong together. Names stand in one column, controls in the next.
class Section final : public QWidget {
    Q_OBJECT

public:
    explicit Section(const QString &title, QWidget *parent = nullptr);

    /// A control with its name before it, and what there is to say about it below.
    void add(const QString &name, QWidget *control, const QString &hint = {});
    /// A control without a name of its own.
    void add(QWidget *control, const QString &hint = {});

    /// So that the controls of several sections stand below each other.
    int nameWidth() const;
    void setNameWidth(int width) { m_grid->setColumnMinimumWidth(0, width); }

private:
    QList<QLabel *> m_names;
    QGridLayout *m_grid;
};

/// A field of the settings with offered values. What the file holds beside them is shown as it stands there.
class ChoiceBox final : public QComboBox {
    Q_OBJECT

public:
    struct Choice {
        QString value; ///< as it stands in the file
        QString text;
    };
    /// What the program makes of the file's value, where that is not the same.
    using Reading = std::function<QString(const Config &)>;

    ChoiceBox(SettingsStore &settings, QString Config::*field, const QList<Choice> &choices,
              Reading reading = {});

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void showConfig();

    SettingsStore &m_settings;
    QString Config::*m_field;
    Reading m_reading;
    int m_offered;
};

/// A field of the settings that is on or off.
class FlagBox final : public QCheckBox {
    Q_OBJECT

public:
    FlagBox(const QString &text, SettingsStore &settings, bool Config::*field);
};

/// Larger and bold by so much of the ordinary text.
Paragraph *headline(const QString &text, double scale);

} // namespace vesk
