// KvStringList - lines of text that also read as name=value pairs and may carry a value each.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "KvComponent.h"
#include "KvVariant.h"

namespace kv {

class TStrings final : public TPersistent
{
public:
    TStrings() = default;
    TStrings(std::initializer_list<std::string_view> Lines);

    std::string_view ClassName() const override { return "TStrings"; }
    void Assign(const TPersistent& Source) override;

    int Count() const { return static_cast<int>(Lines.size()); }
    bool IsEmpty() const { return Lines.empty(); }
    /// Line `Index` from 0. Raises Exception "List index out of bounds (%d)".
    const std::string& operator[](int Index) const;
    void SetLine(int Index, std::string_view Line);

    /// Adds a line at the end, with `Object` attached to it, and returns its index.
    int Add(std::string_view Line, const TVariant& Object = {});
    void Insert(int Index, std::string_view Line);
    void Delete(int Index);
    void Clear();
    void Reserve(int Count) { Lines.reserve(static_cast<std::size_t>(Count)); }

    /// The index of the line that equals `Line` without regard to case (ASCII letters), or -1.
    int IndexOf(std::string_view Line) const;

    // A line reads "Name=Value"; a line without "=" has no name and no value.
    std::string_view NameAt(int Index) const;
    std::string_view ValueAt(int Index) const;
    /// The value of the first line with that name, compared without regard to case; empty when none.
    std::string_view Value(std::string_view Name) const;
    int IndexOfName(std::string_view Name) const;

    // What is attached to a line stays with it: the number that it stands for, the file that it names.
    const TVariant& Object(int Index) const;        ///< Empty where nothing is attached.
    void SetObject(int Index, const TVariant& Object);

    /// All lines, each followed by a line end (CR LF).
    std::string Text() const;
    /// Replaces all lines; CR LF, CR and LF end a line.
    void SetText(std::string_view Text);

    /// Between the two calls OnChange is held back, then called once. Pairs nest.
    void BeginUpdate() { ++UpdateCount; }
    void EndUpdate();

    /// Compares the lines, not the objects.
    friend bool operator==(const TStrings& A, const TStrings& B);

    std::function<void()> OnChange;                 ///< Called after every change outside an update.

    auto begin() const { return Lines.begin(); }
    auto end() const { return Lines.end(); }

private:
    std::size_t Checked(int Index) const;
    void Attach(std::size_t Position, TVariant Object);
    void Changed();

    std::vector<std::string> Lines;
    std::vector<TVariant> Objects;                  // as long as the highest index that was given one
    int UpdateCount = 0;
    bool ChangedInUpdate = false;
};

} // namespace kv
