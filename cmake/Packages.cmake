# The packages of `./dev package`: the libraries, what a C++ program needs to use them, the program, and the Python package.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME oxclass)
set(CPACK_PACKAGE_VENDOR "OXClass")
set(CPACK_PACKAGE_CONTACT "OXClass developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)

set(CPACK_COMPONENTS_ALL libraries development program python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(CPACK_COMPONENT_LIBRARIES_DESCRIPTION "Business objects for dental imaging: the libraries\n\
 Patients, DICOM studies and series, images, image cards and layouts as objects\n on SQLite, PostgreSQL and ODBC databases.")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME liboxclass)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Business objects for dental imaging: headers and examples")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liboxclass-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "liboxclass (= ${PROJECT_VERSION})")

set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "Business objects for dental imaging: the command line program")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME oxclass)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "liboxclass (= ${PROJECT_VERSION}), fonts-dejavu-core")

set(CPACK_COMPONENT_PYTHON_DESCRIPTION "Business objects for dental imaging: the Python package")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-oxclass)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.9), liboxclass (= ${PROJECT_VERSION})")

include(CPack)
