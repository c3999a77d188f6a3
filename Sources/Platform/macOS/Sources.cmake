# What the macOS platform is made of and how it is compiled, for its build on a Mac and for the type check elsewhere.

set(quillon_macos_sources
    Accessibility.mm
    Application.mm
    Bundle.mm
    Clock.mm
    ColumnView.mm
    Controls.mm
    DistributedNotificationCenter.mm
    EventAccess.mm
    EventTaps.mm
    FileSystem.mm
    FormView.mm
    Images.mm
    KeyMonitors.mm
    Layout.mm
    LoginItem.mm
    MacPlatform.mm
    NativeMenu.mm
    NotificationCenter.mm
    Observation.mm
    Panels.mm
    ProcessInfo.mm
    Scheduler.mm
    ScreenCapture.mm
    Screens.mm
    StatusBar.mm
    SyntheticEvents.mm
    TitledWindows.mm
    UserDefaults.mm
    Views.mm
    WindowServer.mm
    Workspace.mm)
set(quillon_macos_main main.mm)

# The oldest macOS that the program runs on.
set(quillon_macos_minimum 14.0)

set(quillon_macos_options
    -fobjc-arc
    -Wunguarded-availability
    -Wundeclared-selector
    -Wstrict-selector-match
    # Says nothing but that the annotations are clang's.
    -Wno-nullability-extension)
