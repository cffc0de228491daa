#include "PinDialog.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "Languages.h"
#include "ModemIcon.h"

using Languages::text;

namespace {

constexpr int IconSize = 48;
constexpr int TextWidth = 340;
constexpr int LongestName = 80;

// The rules name their classes: a check box inside keeps its own look.
const char *const Alarming = ".QLabel, .QCheckBox { color: #7a1710; } "
                             ".QFrame, #ConnectionManager_PinWrong "
                             "{ background: #fbe3e1; border-radius: 4px; }";

// A card may call itself anything: one line of bounded length, whose direction of writing is its
// own business (first strong isolate).
QString shownName(const std::string &name)
{
    const QString line = QString::fromStdString(name).simplified().left(LongestName);
    return QChar(0x2068) + line + QChar(0x2069);
}

} // namespace

PinDialog::PinDialog(const CardHost::PinRequest &request, QWidget *parent)
    : QDialog(parent)
    , m_request(request)
{
    setObjectName("ConnectionManager_PinDialog");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(16, 16, 16, 16);
    row->setSpacing(16);
    row->setSizeConstraint(QLayout::SetFixedSize);
    auto *icon = new QLabel(this);
    icon->setPixmap(ModemIcon::simCard().pixmap(IconSize));
    row->addWidget(icon, 0, Qt::AlignTop);
    auto *column = new QVBoxLayout;
    column->setSpacing(8);
    row->addLayout(column);

    m_asks = addLabel(column);
    m_wrong = addLabel(column);
    m_wrong->setObjectName("ConnectionManager_PinWrong");
    m_wrong->setMargin(6);
    m_wrong->setStyleSheet(Alarming);
    m_wrong->setVisible(m_request.wrong);
    m_fieldLabel = addLabel(column);
    m_field = new PinField(this);
    m_field->setObjectName("ConnectionManager_PinField");
    m_fieldLabel->setBuddy(m_field);
    column->addWidget(m_field);
    m_tries = addLabel(column);
    m_tries->setVisible(m_request.triesLeft > 0);
    if (m_request.triesLeft == 1)
        column->addWidget(createLastTryWarning());
    column->addSpacing(8);
    column->addLayout(createButtons());

    connect(m_field, &QLineEdit::textChanged, this, &PinDialog::updateOk);
    connect(this, &QDialog::finished, this, &PinDialog::answer);
    m_field->setFocus();
    retranslate();
    updateOk();
}

QLabel *PinDialog::addLabel(QLayout *layout)
{
    auto *label = new QLabel(this);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(TextWidth);
    layout->addWidget(label);
    return label;
}

QWidget *PinDialog::createLastTryWarning()
{
    auto *frame = new QFrame(this);
    frame->setStyleSheet(Alarming);
    auto *column = new QVBoxLayout(frame);
    column->setContentsMargins(8, 8, 8, 8);
    m_lastTry = new QLabel(frame);
    m_lastTry->setTextFormat(Qt::PlainText);
    m_lastTry->setWordWrap(true);
    m_confirmation = new QCheckBox(frame);
    m_confirmation->setObjectName("ConnectionManager_PinConfirmation");
    column->addWidget(m_lastTry);
    column->addWidget(m_confirmation);
    connect(m_confirmation, &QCheckBox::toggled, this, &PinDialog::updateOk);
    connect(m_confirmation, &QCheckBox::clicked, m_field, [this] { m_field->setFocus(); });
    return frame;
}

QLayout *PinDialog::createButtons()
{
    auto *row = new QHBoxLayout;
    m_ok = new QPushButton(this);
    m_ok->setObjectName("ConnectionManager_PinOk");
    m_ok->setDefault(true);
    m_cancel = new QPushButton(this);
    m_cancel->setObjectName("ConnectionManager_PinCancel");
    m_cancel->setAutoDefault(false);
    row->addStretch();
    row->addWidget(m_ok);
    row->addWidget(m_cancel);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    return row;
}

void PinDialog::retranslate()
{
    setWindowTitle(text("IDS_CM_PIN_TITLE"));
    m_asks->setText(text("IDS_CM_PIN_ASKS").arg(shownName(m_request.card)));
    m_wrong->setText(text("IDS_CM_PIN_WRONG"));
    m_fieldLabel->setText(text("IDS_CM_PIN_FIELD"));
    m_tries->setText(text("IDS_CM_PIN_TRIES").arg(m_request.triesLeft));
    m_ok->setText(text("IDS_CM_PIN_OK"));
    m_cancel->setText(text("IDS_CM_PIN_CANCEL"));
    if (!m_confirmation)
        return;
    m_lastTry->setText(text("IDS_CM_PIN_LAST_TRY"));
    m_confirmation->setText(text("IDS_CM_PIN_CONFIRM"));
}

void PinDialog::updateOk()
{
    const bool confirmed = !m_confirmation || m_confirmation->isChecked();
    m_ok->setEnabled(confirmed && m_field->pin().isValid());
}

void PinDialog::answer(int result)
{
    CardHost::answerPin(m_request.id, result == Accepted ? m_field->pin() : CardHost::Pin());
    m_field->wipe();
}
