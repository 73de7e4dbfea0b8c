// The style sheet of a contact sheet.
#include "apps/kelva/sheet/Style.h"

namespace apps {

const std::string_view kStyle = R"css(:root {
  color-scheme: light dark;
  --paper: #f7f6f3;
  --mat: #e7e4de;
  --line: #d8d4cc;
  --ink: #1c1b19;
  --soft: #5d5850;
  --link: #0a4f9e;
  --link-paper: #dde9f7;
  --warn: #8a1c12;
  --warn-paper: #fbe4e0;
  --row: 11rem;
  --gap: 1.1rem;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #131312;
    --mat: #232220;
    --line: #38352f;
    --ink: #efece6;
    --soft: #aaa49a;
    --link: #9cc8ff;
    --link-paper: #16304d;
    --warn: #ffb4a8;
    --warn-paper: #4a1a14;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto;
  max-width: 120rem;
  padding: 0 clamp(1rem, 4vw, 3.5rem) 3rem;
  background: var(--paper);
  color: var(--ink);
  font: 1rem/1.45 system-ui, "Segoe UI", "Helvetica Neue", "Liberation Sans", sans-serif;
  overflow-wrap: anywhere;
}
header { padding: clamp(1.75rem, 6vw, 4rem) 0 .5rem; }
h1 { margin: 0; font-size: clamp(1.6rem, 4vw, 2.6rem); line-height: 1.1; letter-spacing: -.02em; font-weight: 650; }
header p { margin: .6rem 0 0; color: var(--soft); }
h1 span { display: inline-block; }
.dot { padding: 0 .15em; }
section { margin: 0 -1rem; padding: 0 1rem 1rem; content-visibility: auto; contain-intrinsic-size: auto 40rem; }
h2 {
  position: sticky;
  top: 0;
  z-index: 1;
  margin: 0;
  padding: 1.2rem 0 .7rem;
  background: linear-gradient(var(--paper) 85%, transparent);
  font-size: 1.05rem;
  font-weight: 600;
}
ul { list-style: none; margin: 0; padding: 0; }
.grid { display: flex; flex-wrap: wrap; gap: 1.6rem var(--gap); }
.grid::after { content: ""; flex: 100000 0 0; margin-left: calc(-1 * var(--gap)); }
.card { flex: calc(var(--r) * 100) 1 calc(var(--r) * var(--row)); max-width: calc(var(--r) * var(--row) * 1.6); min-width: 0; }
.frame {
  display: block;
  position: relative;
  overflow: hidden;
  aspect-ratio: var(--r);
  border-radius: .5rem;
  background: var(--mat);
  box-shadow: 0 0 0 1px rgb(0 0 0 / .08), 0 1px 3px rgb(0 0 0 / .12), 0 6px 18px rgb(0 0 0 / .08);
  color: inherit;
  text-decoration: none;
}
.frame img { display: block; width: 100%; height: 100%; object-fit: cover; }
a.frame { transition: transform .15s, box-shadow .15s; }
a.frame:hover { transform: translateY(-2px); box-shadow: 0 0 0 1px rgb(0 0 0 / .1), 0 10px 28px rgb(0 0 0 / .22); }
a:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; }
.none {
  display: grid;
  place-items: center;
  height: 100%;
  padding: 1rem;
  color: var(--soft);
  font-size: .85rem;
  text-align: center;
  background: repeating-linear-gradient(135deg, transparent 0 .6rem, var(--line) .6rem calc(.6rem + 1px));
}
.none span { padding: .15rem .6rem; border-radius: 1rem; background: var(--mat); }
.mark {
  position: absolute;
  right: .5rem;
  bottom: .5rem;
  padding: .1rem .55rem;
  border-radius: 1rem;
  background: var(--warn-paper);
  color: var(--warn);
  font-size: .75rem;
  font-weight: 600;
}
h3 { margin: .6rem 0 0; font-size: .875rem; line-height: 1.3; font-weight: 600; }
.where { display: flex; flex-wrap: wrap; gap: 0 .7em; margin: 0; color: var(--soft); font-size: .8rem; }
.where, .files { font-variant-numeric: tabular-nums; }
.files { display: flex; flex-wrap: wrap; gap: .3rem; margin-top: .4rem; font-size: .75rem; }
.file {
  display: block;
  padding: .05rem .5rem;
  border: 1px solid var(--line);
  border-radius: 1rem;
  color: var(--soft);
}
.file b { font-weight: 600; }
a.file { border-color: transparent; background: var(--link-paper); color: var(--link); text-decoration: none; }
a.file:hover { text-decoration: underline; }
.empty { padding: 4rem 0; color: var(--soft); text-align: center; }
footer { margin-top: 3rem; padding-top: 1rem; border-top: 1px solid var(--line); color: var(--soft); font-size: .8rem; }
footer p { margin: 0; }
@media (max-width: 40rem) { :root { --row: 8.5rem; --gap: .7rem; } .grid { row-gap: 1.2rem; } .card { max-width: none; } }
@media (prefers-reduced-motion: reduce) { a.frame { transition: none; } a.frame:hover { transform: none; } }
@media print {
  :root {
    color-scheme: light;
    --paper: #fff; --mat: #f2f2f2; --line: #bbb; --ink: #000; --soft: #444;
    --link: #000; --link-paper: #fff; --warn: #000; --warn-paper: #fff; --row: 7rem; --gap: 3mm;
  }
  @page { margin: 14mm; }
  body { max-width: none; padding: 0; font-size: 9pt; }
  header { padding: 0 0 3mm; }
  section { margin: 0; padding: 0; content-visibility: visible; }
  h2 { position: static; padding: 4mm 0 2mm; background: none; break-after: avoid; }
  .grid { row-gap: 4mm; }
  .card { break-inside: avoid; }
  .frame { box-shadow: none; border-radius: 1mm; }
  a.file { border-color: var(--line); }
  footer { break-inside: avoid; }
}
)css";

}  // namespace apps
