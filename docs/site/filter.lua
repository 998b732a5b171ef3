-- Makes a page of the manual out of its Markdown. Four kinds of fenced blocks are more than text:
--
--   ```{.pictures scene=night}          a grid of pictures, one a line:
--   Caption | OPTIONS | KEY=VALUE ...   what `vireon render` is called with, nothing for the scene
--   ```                                 itself; keys as those of the block, for this one picture
--
--   ```{.presets}                       every preset of the tool before and after; lines "PRESET SCENE"
--   ```                                 choose their pictures, the others get the night
--
--   ```{.output}                        the command, and what it prints
--   ```{.result}                        what the command prints, which is Markdown
--
-- Keys of pictures: scene, options (before those of the line), size, crop, over, show, columns;
-- see docs/site/picture. The pictures are not made here: every one leaves a job.

local page = os.getenv("VIREON_MANUAL_PAGE")
local jobs = os.getenv("VIREON_MANUAL_JOBS")
local scenes = os.getenv("VIREON_MANUAL_SCENES")
local count = 0

local subjects = {
  ["night.png"] = "A city street at night",
  ["neon.png"] = "A neon sign on a brick wall",
  ["stars.png"] = "Bright stars and a nebula",
  ["title.png"] = "Title letters on a transparent ground",
  ["portrait.png"] = "A figure in soft light",
  ["product.png"] = "A perfume flask on white",
  ["sunlit.png"] = "White houses over a glittering sea",
  ["lights.png"] = "A few small lights on black",
  ["bulbs.png"] = "A few small lights on black",
}

local function trim(text)
  return (text:gsub("^%s+", ""):gsub("%s+$", ""))
end

local function quoted(text)
  return "'" .. text:gsub("'", "'\\''") .. "'"
end

local function escaped(text)
  return (text:gsub("&", "&amp;"):gsub("<", "&lt;"):gsub(">", "&gt;"):gsub('"', "&quot;"))
end

local function fail(message)
  io.stderr:write(page .. ".md: " .. message .. "\n")
  os.exit(1)
end

local function write_job(name, job)
  local file = assert(io.open(jobs .. "/" .. name .. ".job.new", "w"))
  for _, key in ipairs({"scene", "options", "command", "size", "crop", "over", "show", "plain"}) do
    if job[key] and job[key] ~= "" then file:write(key, "=", quoted(job[key]), "\n") end
  end
  file:close()
end

local function cell(line, block)
  local fields = {}
  for field in (line .. "|"):gmatch("([^|]*)|") do fields[#fields + 1] = trim(field) end
  local job = {size = "640x360"}
  for key, value in pairs(block) do job[key] = value end
  local own = fields[2] or ""
  for key, value in (fields[3] or ""):gmatch("(%w+)=(%S+)") do job[key] = value end
  if job.command then
    job.scene, job.options = nil, nil
    job.command = job.command .. " " .. own
  else
    if not job.scene then fail("no scene for: " .. line) end
    if not job.scene:find("%.") then job.scene = job.scene .. ".png" end
    job.options = trim((job.options or "") .. " " .. own)
    if fields[2] == "-" then job.options, job.plain = "", "yes" end
  end
  count = count + 1
  local name = string.format("%s-%03d.jpg", page, count)
  write_job(name, job)
  local caption = fields[1]
  local text = caption ~= "" and caption or own
  local subject = subjects[job.scene]
  if subject and text ~= "" then subject = subject .. ": " end
  text = (subject or "") .. text
  local width, height = job.size:match("(%d+)x(%d+)")
  local shown = own ~= "" and own ~= "-" and '<code>' .. escaped(own) .. '</code>' or ""
  return string.format(
    '<figure><a href="pictures/%s"><img src="pictures/%s" alt="%s" width="%s" height="%s" ' ..
    'loading="lazy"></a><figcaption>%s %s</figcaption></figure>',
    name, name, escaped(text), width, height, escaped(caption), shown)
end

local function pictures(block)
  local keys = {}
  for key, value in pairs(block.attributes) do keys[key] = value end
  local columns = keys.columns or "3"
  local cells = {}
  for line in block.text:gmatch("[^\n]+") do
    if trim(line) ~= "" then cells[#cells + 1] = cell(line, keys) end
  end
  return pandoc.RawBlock("html", string.format(
    '<div class="pictures of-%s">\n%s\n</div>', columns, table.concat(cells, "\n")))
end

-- What a command says is kept until docs/build draws the scenes anew: some measure for a while.
local function output_of(command)
  local kept = scenes .. "/" .. pandoc.sha1(command) .. ".said"
  local file = io.open(kept)
  if not file then
    local said = pandoc.pipe("sh", {"-c", 'cd "$0" && set -e\n' .. command, scenes}, "")
    file = assert(io.open(kept, "w"))
    file:write(said)
    file:close()
    return said
  end
  local said = file:read("a")
  file:close()
  return said
end

-- JSON is YAML, and that is what the metadata of a document is written in.
local function read_json(text)
  local document = pandoc.read("---\nvalue: " .. text .. "\n---\n", "markdown-smart")
  return document.meta.value
end

local function presets(block)
  local text = pandoc.utils.stringify
  local chosen = {}
  for name, scene in block.text:gmatch("(%S+)%s+(%S+)") do chosen[name] = scene end
  local result = {}
  for _, preset in ipairs(read_json(output_of("vireon presets --json"))) do
    local name = text(preset.preset)
    local scene = chosen[name] or "night"
    chosen[name] = nil
    result[#result + 1] = pandoc.Header(3, text(preset.name), {id = name})
    result[#result + 1] = pandoc.Para(pandoc.Str(
      text(preset.description) .. ". For " .. text(preset["for"]) .. "."))
    local keys = {scene = scene, columns = "2"}
    if scene == "title" then keys.over = "grey" end
    result[#result + 1] = pictures({attributes = keys,
      text = "Before | -\n" .. text(preset.name) .. " | --preset " .. name})
    local values = {}
    for line in output_of("vireon presets " .. name):gsub("^.-\n\n", ""):gmatch("[^\n]+") do
      values[#values + 1] = trim(line)
    end
    result[#result + 1] = pandoc.CodeBlock(table.concat(values, "\n"), {class = "output"})
  end
  for name in pairs(chosen) do fail("there is no preset " .. name) end
  return result
end

-- Wide tables scroll by themselves on a narrow screen.
function Table(element)
  for _, column in ipairs(element.colspecs) do column[2] = nil end
  return pandoc.Div(element, {class = "table"})
end

function CodeBlock(block)
  if block.classes:includes("presets") then return presets(block) end
  if block.classes:includes("pictures") then return pictures(block) end
  if block.classes:includes("output") then
    return pandoc.CodeBlock("$ " .. block.text .. "\n" .. output_of(block.text), {class = "output"})
  end
  if block.classes:includes("result") then
    local said = pandoc.Div(pandoc.read(output_of(block.text), "markdown").blocks)
    return pandoc.walk_block(said, {Table = Table}).content
  end
end

-- Pages link to each other's Markdown, so that the links work in both places.
function Link(link)
  link.target = link.target:gsub("^([%w-]+)%.md", "%1.html")
  return link
end

function Meta(meta)
  local current = pandoc.utils.stringify(meta.current)
  for i, entry in ipairs(meta.pages) do
    if pandoc.utils.stringify(entry.file) == current then
      entry.current = true
      meta.previous, meta.next = meta.pages[i - 1], meta.pages[i + 1]
    end
  end
  return meta
end
