#pragma once

#include <cstdint>
#include <string>

#include "sdk/sdk.h"

/// The tables of functions that every host hands out. They are the same for all hosts; the
/// functions find their host through the effect reference and the thread.
namespace vireon::headless {

sdk::PF_InteractCallbacks InteractTable();
sdk::PF_UtilCallbacks* UtilTable();
sdk::SPBasicSuite* BasicSuiteTable();
sdk::PF_PreRenderCallbacks* PreRenderTable();
sdk::PF_SmartRenderCallbacks* SmartRenderTable();

/// Table of a suite; null when this host knows none of that name and version.
const void* FindSuite(const std::string& name, std::int32_t version);

// Parts of the above, by the file that serves them.
void FillAnsi(sdk::PF_ANSICallbacks& table);
void FillHandles(sdk::PF_UtilCallbacks& table);
void FillPixels(sdk::PF_UtilCallbacks& table);
void FillWorlds(sdk::PF_UtilCallbacks& table);
const sdk::PF_WorldSuite1* WorldSuite1Table();
const sdk::PF_WorldSuite2* WorldSuite2Table();
const sdk::PF_HandleSuite1* HandleSuiteTable();
const sdk::PF_ColorParamSuite1* ColorParamSuiteTable();
const sdk::PF_ParamUtilsSuite1* ParamUtilsSuite2Table();
const sdk::PF_ParamUtilsSuite3* ParamUtilsSuite3Table();
const sdk::PFAppSuite4* AppSuiteTable();
const sdk::PF_PathQuerySuite1* PathQuerySuiteTable();
const sdk::PF_PathDataSuite1* PathDataSuiteTable();

}  // namespace vireon::headless
