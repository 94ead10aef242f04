#ifndef ZEPHRIN2D_PLATFORM_AUDIOMPI_H
#define ZEPHRIN2D_PLATFORM_AUDIOMPI_H

namespace Tadwick {
namespace Vell {

class IEventListener;

/// The audio service. The desktop platform plays nothing: actors hold one
/// because the device's actors do.
class CAudioMPI
{
public:
    explicit CAudioMPI(const IEventListener* listener = 0) : mListener(listener) {}
    bool IsValid() const { return true; }

private:
    const IEventListener* mListener;
};

} // namespace Vell
} // namespace Tadwick

#endif
