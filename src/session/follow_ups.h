#pragma once

/// What the session calls in the rooms above it when it connects and when a command has completed. The calls are
/// direct, so the order of steps stays exact. User-interface thread.
class FollowUps {
public:
    virtual ~FollowUps() = default;

    virtual void ShowRemoteFileList() = 0;  ///< a listing has arrived: fill the remote list
    virtual void FinishReceive() = 0;       ///< a file has been received
    virtual void FinishSend() = 0;          ///< a file has been sent
    virtual void AddCurrentSite() = 0;      ///< a connect begins: its address belongs into the site book
};
