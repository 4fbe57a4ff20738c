#include "Windows/LoginItemBox.h"

#include "Foundation/UserError.h"
#include "Platform/LoginItem.h"
#include "Windows/Controls.h"

#include <QVBoxLayout>

namespace vesk {

LoginItemBox::LoginItemBox(LoginItem &item, QWidget *parent)
    : QWidget(parent)
    , m_item(item)
    , m_box(new QCheckBox(tr("Start Vesk when I lo&g in")))
    , m_problem(new HintLabel)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_box);
    column->addWidget(m_problem);
    connect(m_box, &QCheckBox::toggled, this, &LoginItemBox::choose); // assistive programs do not click
    showState();
}

void LoginItemBox::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    showState();
}

void LoginItemBox::showState()
{
    const Availability availability = m_item.availability();
    m_box->setEnabled(availability.isAvailable());
    m_box->setChecked(m_item.isEnabled());
    m_problem->setText(availability.reason());
    m_problem->setVisible(!availability.isAvailable());
}

void LoginItemBox::choose(bool isOn)
{
    if (isOn == m_item.isEnabled()) {
        return;
    }
    try {
        m_item.setEnabled(isOn);
        showState();
    } catch (const UserError &error) {
        showState();
        m_problem->setText(error.errorDescription());
        m_problem->show();
    }
}

} // namespace vesk
