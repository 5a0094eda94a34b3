#include "transfer/progresspanel.h"

#include "transfer/progressmodel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestWait = 2000; ///< milliseconds

/// A label of fixed width: nothing moves when its text changes.
QLabel *addLabel(QWidget *parent, const QString &name, const QString &widest,
                 Qt::Alignment alignment)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment | Qt::AlignVCenter);
    label->setFixedWidth(label->fontMetrics().horizontalAdvance(widest));
    return label;
}

/// The bar counts in 31 bits: larger amounts are shown in units of a power of two.
int unitShift(qint64 maximum)
{
    int shift = 0;
    while ((maximum >> shift) > std::numeric_limits<int>::max()) {
        ++shift;
    }
    return shift;
}

} // namespace

ProgressPanel::ProgressPanel(ProgressModel &model, QWidget *parent)
    : QFrame(parent)
    , m_model(model)
{
    setObjectName(u"frame_transfer"_s);
    build();
    connect(&model, &ProgressModel::changed, this, &ProgressPanel::showModel);
    showModel();
    m_patience.setSingleShot(true);
    m_patience.setInterval(longestWait);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_commandIsSlow = true;
        showAbort();
    });
}

void ProgressPanel::setAbortEnabled(bool enabled)
{
    m_abortWanted = enabled;
    showAbort();
}

void ProgressPanel::followCommand(bool runs)
{
    if (m_commandRuns != runs) {
        m_commandRuns = runs;
        m_commandIsSlow = false;
        runs ? m_patience.start() : m_patience.stop();
        showAbort();
    }
}

void ProgressPanel::showAbort() { cmdAbort->setEnabled(m_abortWanted || m_commandIsSlow); }

void ProgressPanel::build()
{
    lblFileName = addLabel(this, u"lblFileName"_s, u"Ordner: MMMMMMM..."_s, Qt::AlignLeft);
    Progress = new QProgressBar(this);
    Progress->setObjectName(u"Progress"_s);
    Progress->setAccessibleName(u"Fortschritt"_s);
    Progress->setTextVisible(false);
    lblRate = addLabel(this, u"lblRate"_s, u"99999,9 MB"_s, Qt::AlignRight);
    lblFileSize = addLabel(this, u"lblFileSize"_s, u"von 99999,9 MB"_s, Qt::AlignLeft);
    cmdAbort = new QPushButton(u"Abbrechen"_s, this);
    cmdAbort->setObjectName(u"cmdAbort"_s);
    cmdAbort->setEnabled(false);
    connect(cmdAbort, &QPushButton::clicked, this, &ProgressPanel::abortClicked);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(lblFileName);
    row->addWidget(Progress, 1);
    row->addWidget(lblRate);
    row->addWidget(lblFileSize);
    row->addWidget(cmdAbort);
}

void ProgressPanel::showModel()
{
    const int shift = unitShift(m_model.maximum());
    // A bar paints itself at once, with all that lies behind it, for every value: a batch of a
    // thousand small files would spend half its time here. Switched on again it paints when the
    // window does.
    Progress->setUpdatesEnabled(false);
    Progress->setMaximum(static_cast<int>(m_model.maximum() >> shift));
    Progress->setValue(static_cast<int>(m_model.value() >> shift));
    Progress->setUpdatesEnabled(true);
    lblFileName->setText(m_model.fileText());
    lblRate->setText(m_model.rateText());
    lblFileSize->setText(m_model.sizeText());
}
