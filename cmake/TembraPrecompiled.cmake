# Qt's headers take most of the time of a build: they are read once for all that uses the same ones.
# Every file includes what it needs all the same; `script/lint` reads them without what is prepared here.
set(core_headers
    <QByteArray> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QList> <QObject> <QPointer> <QSet> <QString>
    <QStringList> <QTemporaryDir> <QTimer> <QVariant> <algorithm> <array> <functional> <map> <memory>
    <optional> <span> <utility> <variant> <vector>)
set(widget_headers
    ${core_headers} <QAbstractItemView> <QAccessible> <QAction> <QApplication> <QBoxLayout> <QKeyEvent> <QLabel>
    <QLineEdit> <QListView> <QMenu> <QPainter> <QPushButton> <QSettings> <QStyle> <QStyledItemDelegate>
    <QToolButton> <QWidget>)

function(tembra_precompiled name)
    cmake_parse_arguments(ARG "" "" "HEADERS;LINK" ${ARGN})
    add_library(${name} OBJECT "${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp")
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${name} PRIVATE ${ARG_LINK})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

tembra_precompiled(TembraPrecompiledCore HEADERS ${core_headers} LINK Qt6::Core)
tembra_precompiled(TembraPrecompiledWidgets HEADERS ${widget_headers} LINK Qt6::Widgets)

# True in OUT when one of the libraries that follow leads to WANTED.
function(tembra_leads_to out wanted)
    set(${out} FALSE PARENT_SCOPE)
    foreach(library IN LISTS ARGN)
        set(found FALSE)
        if(library STREQUAL wanted)
            set(found TRUE)
        elseif(library MATCHES "^Tembra" AND TARGET ${library})
            get_target_property(further ${library} INTERFACE_LINK_LIBRARIES)
            if(further)
                tembra_leads_to(found ${wanted} ${further})
            endif()
        endif()
        if(found)
            set(${out} TRUE PARENT_SCOPE)
            return()
        endif()
    endforeach()
endfunction()

# Gives TARGET, which links the libraries that follow, the headers that suit them.
function(tembra_use_precompiled target)
    tembra_leads_to(uses_widgets Qt6::Widgets ${ARGN})
    if(uses_widgets)
        target_precompile_headers(${target} REUSE_FROM TembraPrecompiledWidgets)
    else()
        target_precompile_headers(${target} REUSE_FROM TembraPrecompiledCore)
    endif()
endfunction()
