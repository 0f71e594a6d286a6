# The peers only parse the same bytes; ours also checks them and makes the calls of them.
find_package(nlohmann_json REQUIRED)
find_package(simdjson REQUIRED)
corvellan_benchmark(History LINK Corvellan::Models nlohmann_json::nlohmann_json simdjson::simdjson)
