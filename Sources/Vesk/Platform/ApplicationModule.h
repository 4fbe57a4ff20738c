#pragma once

#include <QtPlugin>

namespace vesk {

/// The entry of the module that is the application on this desktop, loaded at run time: what it links would
/// make the other modes start slowly.
class ApplicationModuleFactory {
public:
    virtual ~ApplicationModuleFactory() = default;

    /// Runs the application until it is quit and gives the process's exit status. Called once, from main(),
    /// without an application object.
    virtual int runApplication(int &argumentCount, char **arguments) = 0;
};

} // namespace vesk

#define VESK_APPLICATION_MODULE_IID "vesk.ApplicationModuleFactory/1"
Q_DECLARE_INTERFACE(vesk::ApplicationModuleFactory, VESK_APPLICATION_MODULE_IID)
