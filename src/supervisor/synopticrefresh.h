#pragma once

#include <QObject>

namespace telvane {

// Tells the synoptic panel that the polls brought new values to show. The panel reads
// them from the value tables and the item states.
class SynopticRefresh final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    void zoneTextsChanged();
    void switchStatesChanged();
    void ledLampsChanged();
    void remoteStatesChanged();
};

} // namespace telvane
