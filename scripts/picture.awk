# Draws a terminal's screen, in which escape sequences set colours, as an SVG picture.
BEGIN {
  split("#2e3436 #cc4b4b #4e9a06 #c4a000 #3f7fd0 #8a5d8f #1a9a9c #d3d7cf", dark, " ")
  split("#7d817d #ef5555 #8ae234 #fce94f #8ab8f0 #c99bd0 #4fd8dc #eeeeec", light, " ")
}
{ line[NR] = $0; if ($0 != "") last = NR }
END {
  width = columns * 8.4 + 32; height = last * 18 + 32
  printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" viewBox=\"0 0 %d %d\">\n", width, height, width, height
  printf "<rect width=\"100%%\" height=\"100%%\" rx=\"8\" fill=\"#1d1f21\"/>\n"
  printf "<g font-family=\"ui-monospace, Menlo, Consolas, 'DejaVu Sans Mono', monospace\" font-size=\"14\" fill=\"#d3d7cf\" xml:space=\"preserve\">\n"
  for (row = 1; row <= last; row++) printf "<text x=\"16\" y=\"%d\">%s</text>\n", row * 18 + 10, drawn(line[row])
  print "</g>\n</svg>"
}
# Styles go on from line to line, as on the screen.
function drawn(text,   result, at, codes) {
  while ((at = index(text, "\033[")) > 0) {
    result = result styled(substr(text, 1, at - 1))
    text = substr(text, at + 2)
    at = index(text, "m")
    codes = substr(text, 1, at - 1)
    set_style(codes)
    text = substr(text, at + 1)
  }
  return result styled(text)
}
function set_style(codes,   each, count, i) {
  count = split(codes == "" ? "0" : codes, each, ";")
  for (i = 1; i <= count; i++) {
    if (each[i] == 0) { colour = ""; bold = 0 }
    else if (each[i] == 1) bold = 1
    else if (each[i] == 22) bold = 0
    else if (each[i] == 39) colour = ""
    else if (each[i] >= 30 && each[i] <= 37) colour = dark[each[i] - 29]
    else if (each[i] >= 90 && each[i] <= 97) colour = light[each[i] - 89]
    else if (each[i] == 38 && each[i + 1] == 5) i += 2
  }
}
function styled(text) {
  gsub(/&/, "\\&amp;", text); gsub(/</, "\\&lt;", text); gsub(/>/, "\\&gt;", text)
  if (text == "" || (colour == "" && !bold)) return text
  return "<tspan" (colour == "" ? "" : " fill=\"" colour "\"") (bold ? " font-weight=\"bold\"" : "") ">" text "</tspan>"
}
