// SPDX-License-Identifier: Apache-2.0
// The component's one string table: every text a window or message box shows, in English.
//
// Ids 2190 and 2298..2343 are fixed: hosts and the message numbers rely on them. Every other
// text has an id of its own below 2298. Ids 2037..2054, 2056, 2119 and 2268 are reserved for the
// space-key hints of the host product's table, whose order is not known to us, so they stay
// unused and the hints here carry new ids.
// One text, one id: a caption that several windows show ("OK", "Cancel", "Clear", a dialog title
// that is also a menu item) is listed once, under the first window that uses it.
#pragma once

#include <string>
#include <vector>

namespace gantrix {
namespace ids {

// Message box captions; the one with the trailing R is used by the total-memory message only
inline constexpr int MessageBoxCaption = 2000;   // "Morvane"
inline constexpr int MessageBoxCaptionR = 2001;  // "MorvaneR"

// Message texts of ShowMessage; the three-line messages join several of them
// "Changed data will be lost. Are you sure you want to continue?"
inline constexpr int ChangedDataWillBeLost = 2298;
// "END instruction position of sequence has exceeded the memory capacity setting value."
inline constexpr int EndPositionExceeded = 2299;
// "END instruction will be deleted if the setting is ended now."
inline constexpr int EndInstructionWillBeDeleted = 2300;
// "Please check the memory capacity setting."
inline constexpr int PleaseCheckMemoryCapacity = 2301;
// "Sub - END instruction position of sequence has exceeded the memory capacity setting value."
inline constexpr int SubEndPositionExceeded = 2302;
// "Sub2 - END instruction position of sequence has exceeded the memory capacity setting value."
inline constexpr int Sub2EndPositionExceeded = 2303;
// "Sub3 - END instruction position of sequence has exceeded the memory capacity setting value."
inline constexpr int Sub3EndPositionExceeded = 2304;
inline constexpr int InputAValue = 2305;        // "Input a value."
inline constexpr int SettingOutOfRange = 2306;  // "Setting out of range"
// "MS-EXCEL has not been installed on your personal computer."
inline constexpr int ExcelNotInstalled = 2307;
// "Editing network/link setting in MS-EXCEL. Please execute it again after ending MS-EXCEL."
inline constexpr int EditingNetworkInExcel = 2308;
// "Printing parameter setting data by MS-EXCEL. Please execute it again after ending MS-EXCEL."
inline constexpr int PrintingParametersInExcel = 2309;
inline constexpr int DeviceNoOutOfRange = 2310;          // "The device No. is out of range."
inline constexpr int InvalidRange = 2311;                // "Invalid range."
inline constexpr int Completed = 2312;                   // "Completed."
inline constexpr int InvalidSettingData = 2313;          // "Invalid setting data."
inline constexpr int SetParametersBackToDefault = 2314;  // "Set parameters back to default value?"
// "Setting subprogram capacity to [0] can be valid when the subprogram editing window is not
// displayed."
inline constexpr int SubprogramCapacityZero = 2315;
inline constexpr int InvalidIoAssignmentData = 2316;  // "Invalid I/O assignment data."
inline constexpr int IoPointsExceeded = 2317;  // "Number of I/O points have exceeded its maximum."
inline constexpr int MismatchWithRefreshParameters = 2318;  // "Mismatch with refresh parameters."
// "I/O Assignment has not been set for MORNET remote station."
inline constexpr int RemoteStationIoNotAssigned = 2319;
// "Mismatch in module between the start of MORNET remote station and I/O assignment module."
inline constexpr int RemoteStationModuleMismatch = 2320;
// "Over the total memory capacity. Please check the memory capacity setting."
inline constexpr int TotalMemoryExceeded = 2321;
// "Start the MS-EXCEL. Are you sure you want to continue?"
inline constexpr int StartExcelConfirm = 2322;
// "It is different from the current mode. Do you wan to clear the setting?"
inline constexpr int DifferentFromCurrentMode = 2323;

// Parameter menu; its item captions are also the titles of the dialogs they open
inline constexpr int Parameter = 2331;               // "Parameter"
inline constexpr int MemoryCapacitySetting = 2332;   // "Memory Capacity Setting"
inline constexpr int LatchRangeSetting = 2333;       // "Latch Range Setting"
inline constexpr int TimerCounterSetting = 2334;     // "Timer/Counter Setting"
inline constexpr int IoAssignment = 2335;            // "I/O Assignment"
inline constexpr int SupplementaryFunctions = 2336;  // "Supplementary Functions"
inline constexpr int NetworkLinkSetting = 2337;      // "Network/Link Setting"
// "Parameter setting data printing (Paste to EXCEL)"
inline constexpr int ParameterPrinting = 2338;
inline constexpr int ClearAll = 2339;        // "Clear All"
inline constexpr int ExcelNoteLine1 = 2340;  // "Network/Link Setting, Parameter Setting"
inline constexpr int ExcelNoteLine2 = 2341;  // "Microsoft EXCEL is required"
inline constexpr int ExcelNoteLine3 = 2342;  // "to execute Data Printing (Paste to EXCEL)"
inline constexpr int Cancel = 2343;          // "Cancel"

// Buttons shared by the menu and the dialogs (Cancel is above)
inline constexpr int OK = 2002;     // "OK"
inline constexpr int Clear = 2003;  // "Clear"

// Spreadsheet workbooks and their sheets
inline constexpr int MornetMode = 2324;                // "MORNET mode"
inline constexpr int MornetIICombinationBook = 2325;   // "MORNET(II) combination.xls"
inline constexpr int MornetIICombinationSheet = 2326;  // "MORNET(II) combination mode"
inline constexpr int MornetIISheet = 2327;             // "MORNET(II) mode"
inline constexpr int NetworkSettingSheet = 2328;       // "Network Setting"
inline constexpr int ParameterModeBook = 2329;         // "Parameter mode.xls"
inline constexpr int CapacityLatchRangeSheet = 2330;   // "Capacity/Latch Range Setting"

// Network/link menu (title NetworkLinkSetting, first option MornetMode)
inline constexpr int MornetIICombinationMode = 2004;  // "MORNET II combination mode"
inline constexpr int MornetIIMode = 2005;             // "MORNET II mode"

// Device letters: latch rows, set-value devices, contact prefix
inline constexpr int DeviceB = 2006;  // "B"
inline constexpr int DeviceC = 2007;  // "C"
inline constexpr int DeviceD = 2008;  // "D"
inline constexpr int DeviceL = 2009;  // "L"
inline constexpr int DeviceR = 2010;  // "R"
inline constexpr int DeviceT = 2011;  // "T"
inline constexpr int DeviceW = 2012;  // "W"
inline constexpr int DeviceX = 2013;  // "X"

// Memory capacity dialog
inline constexpr int ProgramSize = 2014;           // "Program Size"
inline constexpr int CommentSize = 2015;           // "Comment Size"
inline constexpr int ExtensionCommentSize = 2016;  // "Extension Comment Size"
inline constexpr int FileRegisterCapacity = 2017;  // "File Register Capacity"
inline constexpr int StatusLatch = 2018;           // "Status latch"
inline constexpr int SamplingTrace = 2019;         // "Sampling trace"
inline constexpr int DataMemory = 2020;            // "Data memory"
inline constexpr int FileRegister = 2021;          // "File register"
inline constexpr int MemoryCapacity = 2022;        // "Memory Capacity"
inline constexpr int KBytes = 2023;                // "K bytes"
inline constexpr int KPoints = 2024;               // "K points"
inline constexpr int KSteps = 2025;                // "K steps"
// "Sampling trace/status latch setting can be switched over by pressing space key or clicking
// mouse."
inline constexpr int TraceLatchHint = 2026;
inline constexpr int CommentRange = 2027;           // " (0, 2-64) "
inline constexpr int ExtensionCommentRange = 2028;  // " (0, 2-63) "
inline constexpr int Range0To4 = 2029;              // " (0-4) "
inline constexpr int Range0To8 = 2030;              // " (0-8) "
inline constexpr int Sequence = 2031;               // "Sequence"
inline constexpr int Range1To7 = 2032;              // " (1-7) "
inline constexpr int Microcomputer = 2033;          // "Microcomputer"
inline constexpr int MicrocomputerNone = 2034;      // "None"
inline constexpr int MicrocomputerExist = 2190;     // "Exist"
inline constexpr int Sequence1To6 = 2035;           // "Sequence (1 -- 6)"
inline constexpr int Sequence1To8 = 2036;           // "Sequence (1 -- 8)"
inline constexpr int Sequence1To14 = 2055;          // "Sequence (1 -- 14)"
inline constexpr int Sequence1To30 = 2057;          // "Sequence (1 -- 30)"
inline constexpr int Microcomputer0To10 = 2058;     // "Microcomputer (0 -- 10)"
inline constexpr int Microcomputer0To14 = 2059;     // "Microcomputer (0 -- 14)"
inline constexpr int Microcomputer0To26 = 2060;     // "Microcomputer (0 -- 26)"
inline constexpr int Microcomputer0To58 = 2061;     // "Microcomputer (0 -- 58)"
inline constexpr int Main = 2062;                   // "Main"
inline constexpr int MainMaxPrefix = 2063;          // "Main (Max"
inline constexpr int Sub = 2064;                    // "Sub"
inline constexpr int Sub1 = 2065;                   // "Sub1"
inline constexpr int Sub2 = 2066;                   // "Sub2"
inline constexpr int Sub3 = 2067;                   // "Sub3"
inline constexpr int Points = 2068;                 // "Points"

// Latch range dialog
inline constexpr int LowSpeedTimerRow = 2069;     // "T 100ms low speed"
inline constexpr int HighSpeedTimerRow = 2070;    // "T  10ms high speed"
inline constexpr int IntegrationTimerRow = 2071;  // "T 100ms integration"
inline constexpr int RangeDash = 2072;            // " -"
inline constexpr int NoLatch = 2073;              // "No Latch"
inline constexpr int HalfLatch = 2074;            // "Half Latch"
inline constexpr int FullLatch = 2075;            // "Full Latch"

// Timer/counter dialog
inline constexpr int NumberOfPoints = 2076;             // "Number of Points (Multiples of 16)"
inline constexpr int StartNo = 2077;                    // "Start No."
inline constexpr int MultiplesOf8 = 2078;               // "(Multiples of 8)"
inline constexpr int SetValueDevices = 2079;            // " (D,W,R) "
inline constexpr int TimerSetting = 2080;               // "Timer Setting"
inline constexpr int CounterSetting = 2081;             // "Counter Setting"
inline constexpr int InterruptCounter = 2082;           // "Interrupt Counter"
inline constexpr int LowSpeed100ms = 2083;              // "Low speed 100ms"
inline constexpr int HighSpeed10ms = 2084;              // "High speed  10ms"
inline constexpr int Integration = 2085;                // "Integration"
inline constexpr int DeviceToStoreSettingValue = 2086;  // "Device to store setting value"
inline constexpr int TimerBlockLow = 2087;              // "T0-255"
inline constexpr int TimerBlockHigh = 2088;             // "T256-2047"

// Interrupt counter dialog (title InterruptCounter)
inline constexpr int NoInterruptCounter = 2089;  // " (       ) "
// "Setting can be changed by pressing space key/clicking the mouse."
inline constexpr int ChangeBySpaceOrMouse = 2090;

// I/O assignment dialog
inline constexpr int IoAssignmentTitle = 2091;     // "I/O assignment"
inline constexpr int KeyEmptySlot0 = 2092;         // "1: 0 point"
inline constexpr int KeyEmptySlot16 = 2093;        // "2: 16 Points"
inline constexpr int KeyEmptySlot32 = 2094;        // "3: 32 Points"
inline constexpr int KeyEmptySlot48 = 2095;        // "4: 48 Points"
inline constexpr int KeyEmptySlot64 = 2096;        // "5: 64 Points"
inline constexpr int KeyInput16 = 2097;            // "6: 16 Points"
inline constexpr int KeyInput32 = 2098;            // "7: 32 Points"
inline constexpr int KeyInput48 = 2099;            // "8: 48 Points"
inline constexpr int KeyInput64 = 2100;            // "9: 64 Points"
inline constexpr int KeyOutput16 = 2101;           // "A: 16 Points"
inline constexpr int KeyOutput32 = 2102;           // "B: 32 Points"
inline constexpr int KeyOutput48 = 2103;           // "C: 48 Points"
inline constexpr int KeyOutput64 = 2104;           // "D: 64 Points"
inline constexpr int KeyFunction16 = 2105;         // "E: 16 Points"
inline constexpr int KeyFunction32 = 2106;         // "F: 32 Points"
inline constexpr int KeyFunction48 = 2107;         // "G: 48 Points"
inline constexpr int KeyFunction64 = 2108;         // "H: 64 Points"
inline constexpr int EmptySlotGroup = 2109;        // "Empty \nslot"
inline constexpr int InputModuleGroup = 2110;      // "Input \nmodule"
inline constexpr int OutputModuleGroup = 2111;     // "Output \nmodule"
inline constexpr int FunctionModuleGroup = 2112;   // "Function \nModule"
inline constexpr int KindEmptySlot = 2113;         // " (S) "
inline constexpr int KindInput = 2114;             // " (X) "
inline constexpr int KindOutput = 2115;            // " (Y) "
inline constexpr int KindFunction = 2116;          // " (F) "
inline constexpr int SlotKeyHint = 2117;           // "Press any of 1 to 9 or A to H key to set."
inline constexpr int SlotNo = 2118;                // "Slot No."
inline constexpr int IoModule = 2120;              // "I/O module"
inline constexpr int Next = 2121;                  // "Next"
inline constexpr int IoAssignmentPrevious = 2122;  // "Previous"
inline constexpr int Model = 2123;                 // "Model"

// Module model name dialog (also SlotNo and Next)
inline constexpr int ModuleNameTitle = 2124;     // "Module Name"
inline constexpr int Module = 2125;              // "Module"
inline constexpr int ModuleNameColumn = 2126;    // "Module name"
inline constexpr int ModuleNamePrevious = 2127;  // "Previous "
inline constexpr int Close = 2128;               // "Close"

// Supplementary functions dialog (title SupplementaryFunctions)
inline constexpr int StepRelay = 2129;                     // "Step relay"
inline constexpr int StartNoOfS = 2130;                    // "Start No of S"
inline constexpr int RangeForS = 2131;                     // "Range for S"
inline constexpr int RunContact = 2132;                    // "RUN"
inline constexpr int PauseContact = 2133;                  // "PAUSE"
inline constexpr int OutputModeAtStopToRun = 2134;         // "Output mode at STOP to RUN"
inline constexpr int BeforeOperation = 2135;               // "Before operation"
inline constexpr int After1Scan = 2136;                    // "After 1 scan"
inline constexpr int OperatingModeAtError = 2137;          // "Operating mode at error"
inline constexpr int FuseBlown = 2138;                     // "Fuse blown"
inline constexpr int OperationError = 2139;                // "Operation Error"
inline constexpr int IoModuleVerifyError = 2140;           // "I/O module verify error"
inline constexpr int FunctionModuleOperationError = 2141;  // "Function module operation error"
inline constexpr int Continue = 2142;                      // "Continue"
inline constexpr int Stop = 2143;                          // "Stop"
inline constexpr int WdtSetting = 2144;                    // "WDT setting"
inline constexpr int WdtRange = 2145;                      // "(1 to 200)"
inline constexpr int WdtUnit = 2146;                       // "* 10ms"
inline constexpr int EndBatchProcess = 2147;               // "END batch process"
inline constexpr int GeneralDataProcessingMethod = 2148;   // "General data processing method"
inline constexpr int WithComment = 2149;                   // "With Comment"
inline constexpr int IoControl = 2150;                     // "I/O control"
inline constexpr int DirectDirect = 2151;                  // "Direct    Direct"
inline constexpr int RefreshDirect = 2152;                 // "Refresh    Direct"
inline constexpr int DirectRefresh = 2153;                 // "Direct    Refresh"
inline constexpr int RefreshRefresh = 2154;                // "Refresh    Refresh"
inline constexpr int RemoteSettingButton = 2155;           // "Remote I/O ,Remote terminal setting"
inline constexpr int MiniSettingButton = 2156;             // "M-NET/MINI auto-refresh setting"
// "Setting for step relay can be changed by pressing space key/clicking the mouse."
inline constexpr int StepRelayHint = 2157;
// "Display mode setting for step relay/annunciator can be changed by pressing space key/clicking
// the mouse."
inline constexpr int AnnunciatorHint = 2158;
// "Setting for step relay/general data processing method can be changed by pressing space
// key/clicking the mouse."
inline constexpr int DataProcessingHint = 2159;
// "Setting for step relay/annunciator display mode/general data processing method can be changed by
// pressing space key/clicking the mouse."
inline constexpr int AnnunciatorDataProcessingHint = 2160;

// Step relay dialog (title SupplementaryFunctions)
inline constexpr int StepRelaySetting = 2161;  // "Step Relay Setting"
// "Setting can be switched by pressing Space Key or clicking mouse."
inline constexpr int SwitchBySpaceOrMouse = 2162;

// Remote I/O and remote terminal dialog
inline constexpr int RemoteTitle = 2163;             // "Remote I/O, Remote Terminal Setting"
inline constexpr int TotalRemoteStations = 2164;     // "Total number of remote stations"
inline constexpr int Range1To64 = 2165;              // " (1-64) "
inline constexpr int StationSettingProtocol = 2166;  // "Station Setting/Protocol"
// "Press 0 or 1 key to set Protocol. (0: MINI standard/1: Non-procedure protocol)"
inline constexpr int ProtocolKeyHint = 2167;
// "Setting not allowed for remote I/O stations"
inline constexpr int RemoteIoStationsNotAllowed = 2168;
inline constexpr int EntryNoHeading = 2169;         // " No."
inline constexpr int Protocol = 2170;               // "Protocol"
inline constexpr int MiniStandard = 2171;           // "MINI Standard"
inline constexpr int NonProcedure = 2172;           // "Non-procedure"
inline constexpr int OnlineMode = 2173;             // "Online mode"
inline constexpr int AutomaticReconnection = 2174;  // "Automatic Reconnection (A.R.)"
inline constexpr int ManualConnection = 2175;       // "Manual Connection (U.R.)"
inline constexpr int StopAtEmergency = 2176;        // "Stop at Emergency (E.S.)"

// M-NET/MINI auto-refresh dialog: title, column headings, help lines, cell values (module count
// range Range0To8)
inline constexpr int MiniTitle = 2177;         // "M-NET/MINI Auto-refresh Setting"
inline constexpr int NumberOfModules = 2178;   // "Number of Modules"
inline constexpr int IoNo = 2179;              // "I/O No."
inline constexpr int ModelName = 2180;         // "Model name"
inline constexpr int NumberOfStations = 2181;  // "Number of stations"
inline constexpr int Receive = 2182;           // "Receive"
inline constexpr int Send = 2183;              // "Send"
inline constexpr int Retry = 2184;             // "Retry"
inline constexpr int Response = 2185;          // "Response"
inline constexpr int DataClear = 2186;         // "Data clear"
inline constexpr int Detected = 2187;          // "Detected"
inline constexpr int ErrorNo = 2188;           // "Error No."
inline constexpr int Error = 2189;             // "Error"
inline constexpr int StartIoNo = 2191;         // "Start I/O No."
inline constexpr int SetStartIoNo = 2192;      // "Set the start I/O No."
inline constexpr int SelectModelName = 2193;   // "Select model name"
inline constexpr int ModelChoices = 2194;      // "0:M-NET/MINI    1:M-NET/MINI-S3"
// "Set the total number of remote I/O stations. (1 -- 64)"
inline constexpr int SetNumberOfStations = 2195;
inline constexpr int SetReceiveData = 2196;   // "Set the receive data to refresh."
inline constexpr int SetSendData = 2197;      // "Set the send data to refresh"
inline constexpr int NumberOfRetries = 2198;  // "Number of retries"
// "Set the number of retries for communication error (0 -- 32)"
inline constexpr int SetNumberOfRetries = 2199;
inline constexpr int ResponseSetting = 2200;  // "Response setting"
// "Set access priority for buffer memory of FROM/TO instruction"
inline constexpr int SetAccessPriority = 2201;
inline constexpr int SetDataOnError = 2202;  // "Set the receive data of communication error"
// "Set the device to refresh error station detection data"
inline constexpr int SetDetectionDevice = 2203;
inline constexpr int SetErrorNoDevice = 2204;       // "Set the device to refresh error No."
inline constexpr int ErrorNoDevices = 2205;         // "T, C, D, W, R, None"
inline constexpr int SendStatusOfLineError = 2206;  // "Send status of line error"
// "0: Test message   1: Hold (send data)    2: OFF data"
inline constexpr int LineErrorChoices = 2207;
inline constexpr int Mini = 2208;        // "MINI"
inline constexpr int MiniS3 = 2209;      // "MINI-S3"
inline constexpr int NoStations = 2210;  // "------"
inline constexpr int Link = 2211;        // "Link"
inline constexpr int Cpu = 2212;         // "CPU"
inline constexpr int Hold = 2213;        // "Hold"
inline constexpr int Test = 2214;        // "Test"
inline constexpr int Off = 2215;         // "OFF"

// What a screen reader reads for the fields (accessible names and descriptions): the parts
// that no caption of the windows shows
inline constexpr int AccessibleStart = 2290;        // "start"
inline constexpr int AccessibleEnd = 2291;          // "end"
inline constexpr int AccessibleRange = 2292;        // "%1 to %2"
inline constexpr int AccessibleUp = 2293;           // "up"
inline constexpr int AccessibleDown = 2294;         // "down"
inline constexpr int AccessibleSecondBlock = 2295;  // "second block"

}  // namespace ids

// The text of string id; an empty string for an id the table does not hold.
std::string LoadResString(int id);

// Every id the table holds, ascending (for tests and tools).
std::vector<int> AllStringIds();

}  // namespace gantrix
