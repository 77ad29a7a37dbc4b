#pragma once

#include "foundation/date.h"

#include <QWidget>

namespace fleetwise {

class FleetMonitor;

/// One page of the usage window. It does nothing by itself: the window says when.
class UsagePage : public QWidget {
public:
    /// What a page shows, so that it is not read again without need.
    enum class Subject { quota, spending, waiting };

    using QWidget::QWidget;

    virtual Subject subject() const = 0;
    virtual QString name() const = 0;
    /// Whether the user's settings want the page at all.
    virtual bool isWanted() const { return true; }
    /// Whether it tells the names and folders of sessions that are not listed.
    virtual bool needsArchive() const { return false; }
    /// Shows how things stand now.
    virtual void refresh(Date now) = 0;
    virtual void setShowsTables(bool showsTables) = 0;
};

}  // namespace fleetwise
