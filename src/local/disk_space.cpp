#include "local/disk_space.h"

#include "base/formats.h"
#include "base/run_time_error.h"
#include "platform/current_folder.h"

#include <limits>
#include <utility>

DiskSpace::DiskSpace(Controls controls, ErrorRecord& errors,
                     std::function<std::optional<FreeSpace>(const QString&)> ask)
    : Form(controls), Errors(errors), Ask(std::move(ask))
{
}

double DiskSpace::ShowDiskSpace(const QString& path)
{
    const std::optional<FreeSpace> space = Ask(path);
    if (!space) return -1;
    double shown = -1;
    const bool fits = Errors.Attempt([&] { shown = ShowProduct(*space); });
    if (!fits) Form.DrvSpaceTrue.setText(Thousands(static_cast<qint64>(space->Bytes())));
    Form.DrvSpace.setVisible(fits);
    Form.DrvSpaceTrue.setVisible(!fits);
    return shown;
}

double DiskSpace::ShowProduct(const FreeSpace& space)
{
    const std::uint64_t bytes = space.Bytes();
    if (bytes > std::numeric_limits<std::int32_t>::max()) throw RuntimeError("Overflow");
    Form.DrvSpace.setText(Thousands(static_cast<qint64>(bytes)));
    Form.DrvSpace.repaint();
    return static_cast<double>(bytes);
}

void DiskSpace::RefreshDiskSpace()
{
    ShowDiskSpace(CurrentFolder());
}
