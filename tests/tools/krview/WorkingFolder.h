#pragma once
#include <Program.h>

#include <filesystem>

/// A workplace that is the test program's own working folder.
class WorkingFolder : public Workplace
{
public:
    WorkingFolder() { std::filesystem::current_path(path()); }
    ~WorkingFolder() { std::filesystem::current_path(fBefore); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    const std::filesystem::path fBefore = std::filesystem::current_path();
};
