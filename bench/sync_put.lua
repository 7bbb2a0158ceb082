-- PUT of the default record's upload, each request under a code of its own (a fresh slot),
-- so that every request is one durable write of a new row.
local threadCount = 0

function setup(thread)
  thread:set("id", threadCount)
  threadCount = threadCount + 1
end

local template = nil
local counter = 0

function init(args)
  local file = assert(io.open(args[1], "rb"))
  template = file:read("*a")
  file:close()
  counter = id * 1000000000
end

function request()
  counter = counter + 1
  local code = string.format("BENCH-PUT-%010d", counter)
  local body = template:gsub("BENCH%-CODE%-PLACEHOLDER", code, 1)
  return wrk.format("PUT", nil, {["Content-Type"] = "application/json",
                                 ["Accept"] = "application/json"}, body)
end
