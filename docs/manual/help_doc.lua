-- Adds what pandoc's RTF lacks: pictures that fit the page, their captions, targets for the table of
-- contents, headings that stay with their text, table rows without an empty line.

local TEXT_WIDTH = 6      -- inches; A4 with the margins of help_doc.rtf
local DOTS_PER_INCH = 120 -- of a picture that is narrower than the text

-- In pixels: in a PNG file, the big-endian number at byte 17.
local function width_of(path)
  local file = assert(io.open(path, 'rb'))
  local head = file:read(20)
  file:close()
  return (string.unpack('>I4', head, 17))
end

function Image(image)
  image.attributes.width = math.min(TEXT_WIDTH, width_of(image.src) / DOTS_PER_INCH) .. 'in'
  return image
end

function Para(paragraph)
  local image = paragraph.content[1]
  if #paragraph.content > 1 or image.t ~= 'Image' then return nil end
  return { pandoc.Para { pandoc.RawInline('rtf', '\\qc\\keepn '), image },
           pandoc.Para { pandoc.RawInline('rtf', '\\qc '), pandoc.Emph(image.caption) } }
end

function Header(header)
  if header.level > 1 then
    header.content:insert(1, pandoc.RawInline('rtf', '\\sb240\\keepn '))
    return header
  end
  header.content:insert(1, pandoc.RawInline('rtf', '\\keepn ')) -- harmless in the table of contents
  header.identifier = header.identifier:gsub('-', '_')          -- bookmark names allow no hyphen
  local target = ('{\\*\\bkmkstart %s}{\\*\\bkmkend %s}'):gsub('%%s', header.identifier)
  return { pandoc.RawBlock('rtf', '{\\pard\\keepn' .. target .. '\\par}'), header }
end

-- pandoc ends the text of a cell with a paragraph mark of its own, which leaves an empty line below it.
local function fill_cells(rows, format)
  for _, row in ipairs(rows) do
    for _, cell in ipairs(row.cells) do
      local text = pandoc.write(pandoc.Pandoc(cell.contents), 'rtf')
      text = text:gsub('^{\\pard[^{}]-\\fi0 ', ''):gsub('\\par}%s*$', '')
      cell.contents = { pandoc.RawBlock('rtf', format .. text) }
    end
  end
end

function Table(table)
  fill_cells(table.head.rows, '\\pard\\intbl\\sb40\\sa40\\keepn\\b ')
  for _, body in ipairs(table.bodies) do fill_cells(body.body, '\\pard\\intbl\\sb40\\sa40 ') end
  return table
end
