#pragma once

#include <QAbstractButton>
#include <QObject>
#include <QTimer>
#include <vector>

class ErrorRecord;
class Language;
class WebPages;

/// The advertisement strip: pictures stacked in one place, of which the next one comes to the front from time to time.
/// Each can be clicked. User-interface thread.
class Advertisements final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QWidget& Window;
        std::vector<QAbstractButton*> Ads;  ///< ads(0) to ads(29), in their order
        QTimer& Timer4;
    };

    /// Starts the rotation.
    Advertisements(Controls controls, const Language& texts, ErrorRecord& errors, WebPages& pages);

    /// Gives every picture the offer as its tool tip and its name for those who cannot see it. To be called whenever
    /// the captions of the window have been set.
    void Offer();

    /// Brings the last picture to the front, as at the start.
    void ShowLast();

    void Timer4_Timer();  ///< brings the next picture to the front

private:
    void BringToFront(std::size_t index);

    Controls Form;
    const Language& Texts;
    ErrorRecord& Errors;
    std::size_t Front = 0;
};
