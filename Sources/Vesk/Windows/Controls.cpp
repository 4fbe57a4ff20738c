#include "Windows/Controls.h"

#include "Windows/SettingsStore.h"

#include <QEvent>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace vesk {

Paragraph::Paragraph(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    setWordWrap(true);
}

QSize Paragraph::minimumSizeHint() const
{
    const QSize least = QLabel::minimumSizeHint();
    return m_width == 0 ? least : QSize(least.width(), heightForWidth(m_width));
}

void Paragraph::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    if (m_width != width()) {
        m_width = width();
        updateGeometry();
    }
}

HintLabel::HintLabel(const QString &text, QWidget *parent)
    : Paragraph(text, parent)
{
    setTextInteractionFlags(Qt::NoTextInteraction);
    updateColour();
}

void HintLabel::changeEvent(QEvent *event)
{
    Paragraph::changeEvent(event);
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::ApplicationPaletteChange) {
        updateColour();
    }
}

// The share of the text's colour keeps a contrast of more than 4.5 in light and dark.
void HintLabel::updateColour()
{
    constexpr float TextShare = 0.7F;
    const QPalette system = QPalette();
    const QColor text = system.color(QPalette::WindowText);
    const QColor ground = system.color(QPalette::Window);
    const auto mixed = [](float a, float b) { return (a * TextShare) + (b * (1 - TextShare)); };
    QPalette own = palette();
    own.setColor(QPalette::WindowText,
                 QColor::fromRgbF(mixed(text.redF(), ground.redF()), mixed(text.greenF(), ground.greenF()),
                                  mixed(text.blueF(), ground.blueF())));
    setPalette(own);
}

Section::Section(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this))
{
    setAccessibleName(title);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setColumnStretch(1, 1);
    m_grid->addWidget(headline(title, 1.1), 0, 0, 1, 2);
}

void Section::add(const QString &name, QWidget *control, const QString &hint)
{
    auto *label = new QLabel(name);
    label->setBuddy(control);
    if (control->accessibleName().isEmpty()) {
        QString plain = name;
        control->setAccessibleName(plain.remove(u'&').remove(u':'));
    }
    m_names.append(label);
    // Beside the first line of a control that has several.
    label->setMinimumHeight(QLineEdit().sizeHint().height());
    m_grid->addWidget(label, m_grid->rowCount(), 0, Qt::AlignTop);
    add(control, hint);
}

void Section::add(QWidget *control, const QString &hint)
{
    const int last = m_grid->rowCount() - 1; // where a name may wait for its control
    const int row = m_grid->itemAtPosition(last, 1) == nullptr ? last : last + 1;
    if (hint.isEmpty()) {
        m_grid->addWidget(control, row, 1);
        return;
    }
    control->setAccessibleDescription(hint);
    auto *column = new QVBoxLayout;
    column->setSpacing(fontMetrics().height() / 6);
    column->addWidget(control);
    column->addWidget(new HintLabel(hint));
    m_grid->addLayout(column, row, 1);
}

int Section::nameWidth() const
{
    int width = 0;
    for (const QLabel *name : m_names) {
        width = std::max(width, name->sizeHint().width());
    }
    return width;
}

ChoiceBox::ChoiceBox(SettingsStore &settings, QString Config::*field, const QList<Choice> &choices,
                     Reading reading)
    : m_settings(settings)
    , m_field(field)
    , m_reading(std::move(reading))
    , m_offered(static_cast<int>(choices.size()))
{
    for (const Choice &choice : choices) {
        addItem(choice.text, choice.value);
    }
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::activated, this, [this](int index) {
        const QString value = itemData(index).toString();
        m_settings.change([this, &value](Config &config) { config.*m_field = value; });
    });
    connect(&settings, &SettingsStore::changed, this, &ChoiceBox::showConfig);
    showConfig();
}

void ChoiceBox::showConfig()
{
    const Config &config = m_settings.config();
    const QString value = m_reading ? m_reading(config) : config.*m_field;
    while (count() > m_offered && itemData(count() - 1) != value) {
        removeItem(count() - 1);
    }
    if (findData(value) < 0) {
        addItem(value, value);
    }
    setCurrentIndex(findData(value));
}

// Whoever scrolls the page means the page.
void ChoiceBox::wheelEvent(QWheelEvent *event)
{
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

FlagBox::FlagBox(const QString &text, SettingsStore &settings, bool Config::*field)
    : QCheckBox(text)
{
    const auto show = [this, &settings, field] { setChecked(settings.config().*field); };
    // Not clicked(): assistive programs toggle.
    connect(this, &QCheckBox::toggled, &settings, [&settings, field](bool isOn) {
        if (settings.config().*field != isOn) {
            settings.change([field, isOn](Config &config) { config.*field = isOn; });
        }
    });
    connect(&settings, &SettingsStore::changed, this, show);
    show();
}

Paragraph *headline(const QString &text, double scale)
{
    auto *label = new Paragraph(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace vesk
