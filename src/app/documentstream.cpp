#include "app/documentstream.h"

DocumentStream::DocumentStream(QIODevice *device) : QDataStream(device) { setVersion(QDataStream::Qt_6_4); }
