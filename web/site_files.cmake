# Writes into the site FOLDER what its pages have to know of its files.
set(service_worker ${FOLDER}/service-worker.js)
file(REMOVE ${service_worker})

# Examples and the manual, with their sizes.
set(program_files)
file(GLOB files RELATIVE ${FOLDER} ${FOLDER}/examples/* ${FOLDER}/doc/*.html)
foreach(name ${files})
  file(SIZE ${FOLDER}/${name} size)
  string(APPEND program_files "  ['${name}', ${size}],\n")
endforeach()
file(WRITE ${FOLDER}/program-files.js "export default [\n${program_files}];\n")

# All files, and a name for just these.
set(all "  './',\n")
set(hashes)
file(GLOB_RECURSE files RELATIVE ${FOLDER} ${FOLDER}/*)
foreach(name ${files})
  file(SHA256 ${FOLDER}/${name} hash)
  string(APPEND hashes "${name} ${hash}\n")
  string(APPEND all "  '${name}',\n")
endforeach()
string(SHA256 version "${hashes}")
string(SUBSTRING ${version} 0 16 version)
configure_file(${CMAKE_CURRENT_LIST_DIR}/service-worker.js.in ${service_worker} @ONLY)
