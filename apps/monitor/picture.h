#pragma once

#include "apps/monitor/spectrumdisplay.h"

#include <QImage>
#include <QString>

namespace monitor {

/// What the title of a picture tells.
struct Caption {
    QString source; ///< the server's endpoint
    quint64 channels = 0;
    double scansPerSecond = 0.0; ///< 0 when not known
    quint64 lines = 0;
    quint64 lostMessages = 0;
};

/// Paints the curves of \a display above its waterfall: axes with frequency, level and time, a
/// colour bar, the strongest signals named. Any size and any display (even an empty one) gives a
/// picture of that size. A size that QImage cannot hold gives a null image. \pre a QGuiApplication
/// lives, since text is painted; call it from its thread.
QImage paintPicture(const SpectrumDisplay &display, const Caption &caption, const QSize &size);

} // namespace monitor
