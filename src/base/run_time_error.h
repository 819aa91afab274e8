#pragma once

#include <QString>
#include <exception>
#include <utility>

/// A statement that could not be carried out, with the sentence the user may see: "Type mismatch", "Overflow",
/// "File not found", "Permission denied" and the like. Thrown by conversions and services, caught inside handlers.
class RuntimeError : public std::exception {
public:
    explicit RuntimeError(QString description) : Description(std::move(description)) {}

    const char* what() const noexcept override { return "run-time error"; }

    QString Description;
};

/// Keeps the description of the last run-time error that the program caught. User-interface thread.
class ErrorRecord {
public:
    /// Runs one step; a run-time error in it is recorded and the caller goes on with its next step.
    /// Returns whether the step ran through. Anything but a RuntimeError passes.
    template <typename Step>
    bool Attempt(Step&& step)
    {
        try {
            std::forward<Step>(step)();
            return true;
        } catch (const RuntimeError& error) {
            Caught(error);
            return false;
        }
    }

    /// Notes an error that the caller caught itself.
    void Caught(const RuntimeError& error) { LastDescription = error.Description; }

    /// Forgets the last error, as at the start of a connect.
    void Clear() { LastDescription.clear(); }

    /// Empty while nothing has been caught.
    const QString& Description() const { return LastDescription; }

private:
    QString LastDescription;
};
