# The libraries that the platform uses, under the names that find_package and pkg_check_modules give them elsewhere. The sources
# are below OXCLASS_WINDOWS_SOURCES, where ./dev windows puts them: sqlite3/ and utf8proc/, and include/ with the headers of
# nlohmann-json and robin-map. ODBC belongs to Windows.
set(OXCLASS_WINDOWS_SOURCES ${PROJECT_SOURCE_DIR}/build/windows-sources CACHE PATH "The sources of other libraries")

add_library(sqlite3 STATIC ${OXCLASS_WINDOWS_SOURCES}/sqlite3/sqlite3.c)
target_include_directories(sqlite3 SYSTEM PUBLIC ${OXCLASS_WINDOWS_SOURCES}/sqlite3)
# As Debian builds it, as far as statements and files are concerned.
target_compile_definitions(sqlite3 PRIVATE SQLITE_THREADSAFE=1 SQLITE_ENABLE_COLUMN_METADATA SQLITE_SECURE_DELETE SQLITE_USE_URI=1
    SQLITE_MAX_VARIABLE_NUMBER=250000 SQLITE_LIKE_DOESNT_MATCH_BLOBS SQLITE_ENABLE_MATH_FUNCTIONS SQLITE_SOUNDEX)
target_compile_options(sqlite3 PRIVATE -w -O2)
add_library(SQLite::SQLite3 ALIAS sqlite3)

add_library(utf8proc STATIC ${OXCLASS_WINDOWS_SOURCES}/utf8proc/utf8proc.c)
target_include_directories(utf8proc SYSTEM PUBLIC ${OXCLASS_WINDOWS_SOURCES}/utf8proc)
target_compile_definitions(utf8proc PUBLIC UTF8PROC_STATIC)
target_compile_options(utf8proc PRIVATE -w)
add_library(PkgConfig::utf8proc ALIAS utf8proc)

add_library(odbc INTERFACE)
target_link_libraries(odbc INTERFACE odbc32)
add_library(PkgConfig::odbc ALIAS odbc)

add_library(headers INTERFACE)
target_include_directories(headers SYSTEM INTERFACE ${OXCLASS_WINDOWS_SOURCES}/include)
add_library(nlohmann_json::nlohmann_json ALIAS headers)
add_library(tsl::robin_map ALIAS headers)
