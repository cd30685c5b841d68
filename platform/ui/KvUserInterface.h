// KvUserInterface - what a run may ask of the program around it: a progress window, message boxes,
// the busy cursor, letting pending messages run, file dialogs.
//
// A program installs one implementation; without one the system is silent and every question gets
// its safe answer, as a library inside a service wants it.
#pragma once

#include <memory>
#include <string>

namespace kv {

/// The texts of a progress window, fixed when it opens.
struct TProgressCaptions
{
    std::string Title;
    std::string Status;
    std::string Cancel;
    std::string Processed, Errors, Added, Updated, Deleted;
    bool Extended = true;                           ///< False: no counters are shown.
};

/// The figures of one refresh.
struct TProgressFigures
{
    int Processed = 0, Errors = 0, Added = 0, Deleted = 0, Updated = 0;
};

/// An open progress window; destroying it closes it.
class TProgressWindow
{
public:
    virtual ~TProgressWindow() = default;

    /// The bar's range and position; it is shown exactly when Min or Max is not zero.
    virtual void SetRange(int Min, int Max, int Position) = 0;
    /// Shows the texts and lets pending messages run, so that Cancel is seen.
    virtual void Update(const std::string& Status, const TProgressFigures& Figures) = 0;
    /// True from the moment in which the user cancelled or closed the window. Asked once per record.
    virtual bool Cancelled() const = 0;
};

enum TMessageKind { mkInformation, mkWarning, mkError };

/// What the user settled in the dialog that saves a specification.
struct TSaveSpecificationRequest
{
    std::string Caption, NameLabel, FileLabel;
    std::string SpecName, FileName;                 ///< Proposed, and changed when the user confirms.
    std::string Filter;                             ///< "description|pattern" pairs, separated by "|".
    std::string Ok, Cancel;                         ///< Of the buttons; "&" stands before the shortcut.
};

class TUserInterface
{
public:
    virtual ~TUserInterface() = default;

    /// Opens the window. An exception means that it cannot be shown.
    virtual std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions& Captions) = 0;
    /// A modal box with one OK button.
    virtual void ShowMessage(TMessageKind Kind, const std::string& Text) = 0;
    /// A modal box with Yes and No. Without a user the answer is No.
    virtual bool Confirm(const std::string& Text) = 0;
    virtual void SetBusyCursor(bool Busy) = 0;
    virtual void ProcessMessages() = 0;
    /// Lets the user pick a file to open; false when none was picked.
    virtual bool PickFileToOpen(const std::string& Filter, std::string& FileName) = 0;
    /// Lets the user settle name and file; false on Cancel, `Request` is then unchanged.
    virtual bool AskSaveSpecification(TSaveSpecificationRequest& Request) = 0;
};

/// The installed implementation; the silent one unless a program set another.
TUserInterface& UserInterface();
/// Installs `Interface`, which must outlive its use; none installs the silent one again.
void SetUserInterface(TUserInterface* Interface);

} // namespace kv
