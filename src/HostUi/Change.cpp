#include "platform/Change.h"

#include "HostUiState.h"

QString Change::tr(QString id, QString context)
{
    const QString text =
        HostUi::state().catalogue.translate(context.toUtf8().constData(), id.toUtf8().constData());
    return text.isEmpty() ? id : text;
}
