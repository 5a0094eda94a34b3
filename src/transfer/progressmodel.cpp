#include "transfer/progressmodel.h"

#include "common/mo_standard.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
constexpr qsizetype LongestItemText = 15;
}

void ProgressModel::beginBatch()
{
    m_inBatch = true;
    Q_EMIT batchBegan();
}

void ProgressModel::setMaximumFor(qint64 size)
{
    if (size > 0) {
        m_maximum = size;
        Q_EMIT changed();
    }
}

void ProgressModel::setValue(qint64 value)
{
    m_value = std::clamp<qint64>(value, 0, m_maximum);
    Q_EMIT changed();
}

void ProgressModel::finish()
{
    m_value = 0;
    m_rate.clear();
    Q_EMIT changed();
    if (std::exchange(m_inBatch, false)) {
        Q_EMIT batchEnded();
    }
}

bool ProgressModel::report(const FtpEvent &event, const TransferState &state)
{
    // The reply that announces the data (150 ..) is in progress as well, but counts no bytes.
    if (event.status != FtpEvent::InProgress || !event.text.isEmpty()) {
        return false;
    }
    switch (event.operation) {
    case OpGetFile:
        advance(state.LocalSize + event.bytes);
        break;
    case OpPutFile:
        advance(state.RemoteSize + event.bytes);
        break;
    case OpGetMultiple:
    case OpPutMultiple:
        // Intended: a folder has no size of its own, but its tree may have a known total.
        m_maximum = event.total > 0 ? event.total : m_maximum;
        advance(event.bytes);
        break;
    default:
        return false;
    }
    m_rate = m_value > 0 ? FormatSize(m_value) : nothingYet();
    Q_EMIT changed();
    return true;
}

void ProgressModel::advance(qint64 done)
{
    if (done <= m_maximum) {
        m_value = std::max<qint64>(done, 0);
        return;
    }
    // The listing's size was too small: the bar is full for a moment and then gets room again.
    m_value = m_maximum;
    m_maximum = done + done / 10;
}

void ProgressModel::ShowTransferItem(const QString &text, const QString &sizeText)
{
    m_file = text.size() > LongestItemText ? text.left(LongestItemText) + u"..."_s : text;
    m_size = sizeText.isEmpty() ? QString() : u"von "_s + FormatSize(lenientInteger(sizeText));
    m_rate = nothingYet();
    Q_EMIT changed();
}

/// Intended: FormatSize(0) is empty, but a file that stalls says that nothing came.
QString ProgressModel::nothingYet() const { return m_size.isEmpty() ? QString() : u"0 Bytes"_s; }

int ProgressModel::percent() const
{
    return static_cast<int>(static_cast<double>(m_value) * 100.0 / static_cast<double>(m_maximum));
}
