#pragma once

#include <cstdint>

namespace vireon {

/// Changes parameters and the look of their controls while a command runs. A parameter is named by
/// its index. The `kind` words are those with which a slider's value is read: 1 or more is a float
/// slider; only `setSlider` looks at them. The order of the operations is part of the interface.
///
/// Values are marked as changed, so that the host takes them. Setters that say so do nothing when
/// the command came without parameters.
class PluginUpdate_API {
  public:
    PluginUpdate_API() = default;
    PluginUpdate_API(const PluginUpdate_API&) = delete;
    PluginUpdate_API& operator=(const PluginUpdate_API&) = delete;

    /// 0: whether operations 8 to 11 can be used: the host has the suite for controls.
    virtual bool isReady() const = 0;
    /// 1: a slider's value: a float slider's for a kind of 1 or more, in 16.16 fixed point for
    /// others and in Final Cut Pro. Does nothing without parameters.
    virtual void setSlider(std::int32_t index, std::int32_t kind, double value) = 0;
    /// 2: a fixed slider's value, rounded to 16.16 fixed point.
    virtual void setFixed(std::int32_t index, std::int32_t kind, double value) = 0;
    /// 3: a popup's choice from 1. The command must have parameters.
    virtual void setPopup(std::int32_t index, std::int32_t kind, std::int32_t choice) = 0;
    /// 4: a checkbox. The command must have parameters.
    virtual void setCheckbox(std::int32_t index, std::int32_t kind, bool on) = 0;
    /// 5: an integer slider's value. Does nothing without parameters.
    virtual void setInteger(std::int32_t index, std::int32_t kind, std::int32_t value) = 0;
    /// 6: a point in pixels. Does nothing without parameters.
    virtual void setPoint(std::int32_t index, std::int32_t kind, double x, double y) = 0;
    /// 7: a colour's red, green and blue from 0 to 1, limited to the 8 bits that it is kept in; its
    /// alpha stays. Does nothing without parameters.
    virtual void setColour(std::int32_t index, std::int32_t kind, double red, double green,
                           double blue) = 0;
    /// 8: enables a control or greys it out, dropping whatever else its look was set to.
    /// \return the suite's code
    virtual std::int32_t enable(std::int32_t index, bool enabled) = 0;
    /// 9: closes or opens a control's twirly. \return the suite's code
    virtual std::int32_t collapse(std::int32_t index, bool collapsed) = 0;
    /// 10: renames a control; 31 bytes of the host's code page. \return the suite's code
    virtual std::int32_t rename(std::int32_t index, const char* name) = 0;
    /// 11: 10 and 8 in one update. \return the suite's code
    virtual std::int32_t renameAndEnable(std::int32_t index, const char* name, bool enabled) = 0;
    /// 12
    virtual ~PluginUpdate_API() = default;
};

}  // namespace vireon
