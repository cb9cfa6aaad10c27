#pragma once

/// Whoever shows the panel and has to know when its entries move.
class PanelObserver
{
public:
    virtual ~PanelObserver() = default;

    /// The entries are still as they are shown. May come several times before they are placed.
    virtual void aboutToPlaceEntries() = 0;
    /// The entries are where they belong, though there may be more to come before anything is painted.
    virtual void entriesPlaced() = 0;
};
