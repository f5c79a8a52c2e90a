#pragma once

#include "protocol/DeviceReply.h"

#include <QList>
#include <QtGlobal>

// The reply of a move ("&/4/..." for a whole table, "&/9/<from>/<to>/0/..."
// at the end of an item move): field 3 the count, then from field 4 one field
// a moved item, "<old identifier>-<old order>|<new identifier>-<new order>".
struct TransferReply {
    static constexpr int kFirstItemField = 4;

    struct MovedItem {
        qint32 sourceIdentifier = 0;
        qint16 sourceOrder = 0;
        qint32 destinationIdentifier = 0;
        qint16 destinationOrder = 0;
    };

    // The moved items up to the first empty field; a field that does not
    // read as a moved item is passed over, so garbage never moves a row.
    static QList<MovedItem> read(const DeviceReply& reply);
};
