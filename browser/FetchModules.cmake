# Fetches what package-lock.json names for run time into INTO, and says what to do where that fails.
file(REMOVE_RECURSE "${INTO}/node_modules")
file(MAKE_DIRECTORY "${INTO}")
file(COPY "${SOURCE}/package.json" "${SOURCE}/package-lock.json" DESTINATION "${INTO}")
execute_process(
    COMMAND "${NPM}" ci --omit=dev --ignore-scripts --no-audit --no-fund --prefer-offline
    WORKING_DIRECTORY "${INTO}"
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR
        "${output}\nThe web app's library could not be fetched. Connect this computer to the network and "
        "build again, or build without the web app: cmake -DNAVREL_BROWSER=OFF")
endif()
file(TOUCH "${INTO}/fetched")
