// The looks and the behavior of a proof in the browser.
#pragma once

namespace orvex::tools::view {

inline constexpr char kProofStyle[] = R"css(
:root { color-scheme: light dark; --quiet: #667; --line: #ccd; --desk: #e6e8ee; --head: #d4d8e2; --fill: #b9d3f0;
  --purge: #f3d59a; --alarm: #b3261e }
@media screen and (prefers-color-scheme: dark) { :root { --quiet: #9aa3b5; --line: #444a57; --desk: #23262d; --head: #3a3f4b;
  --fill: #2f4a6b; --purge: #6b5520; --alarm: #ff8a80 } }
* { box-sizing: border-box }
body { display: flex; flex-direction: column; font: 15px/1.45 system-ui, sans-serif; margin: 0 auto;
  max-width: 75rem; padding: 1rem; overflow-wrap: anywhere }
h1 { font-size: 1.4rem; margin: 0 } h2 { font-size: 1.1rem; margin: 1.2rem 0 .4rem }
header { order: -2 } #warnings { order: -1 }
.quiet, small { color: var(--quiet) }
#warnings li { color: var(--alarm) }
.bar { display: flex; flex-wrap: wrap; gap: .5rem 1rem; align-items: center; margin: .6rem 0 }
button, select, input { font: inherit } button { min-width: 2.2rem; min-height: 2rem }
#page { width: 5rem }
#frame { background: var(--desk); overflow: auto; max-height: 80vh; padding: .6rem; border: 1px solid var(--line) }
#canvas { display: block; margin: auto; background: #fff }
#pages { display: flex; flex-wrap: wrap; gap: .5rem; max-height: 16rem; overflow: auto; padding: .4rem 0 }
#pages button { background: var(--desk); border: 2px solid var(--line); padding: .2rem; color: inherit }
#pages button[aria-current=page] { border-color: #37c }
#pages canvas { display: block; width: 84px; height: 84px; object-fit: contain }
table { border-collapse: collapse; overflow-wrap: break-word } .wide { overflow-x: auto }
th, td { border-bottom: 1px solid var(--line); padding: .15rem .7rem .15rem 0; text-align: left; vertical-align: top }
td.number, th.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums }
tr.unusual { font-weight: bold } #note:empty { display: none }
svg { max-width: 100%; max-height: 60vh; fill: currentColor }
#scale { position: relative; max-width: 30rem; margin: .4rem 0 } #scale canvas { display: block; width: 100%; height: 1rem }
#scale i { position: absolute; top: 0; height: 1.4rem; border-left: 2px solid }
#scale p { display: flex; justify-content: space-between; margin: .4rem 0 }
@media print { :root { color-scheme: light } h2, h3 { break-after: avoid } svg, tr, li { break-inside: avoid }
  .bar, #pages { display: none } #frame { max-height: none; border: 0; padding: 0 }
  #canvas { width: auto !important; max-width: 100%; max-height: 22cm } }
)css";

// Pictures stay text until their page is seen. One picture has the inks of a page below each other, each
// gray: 255 without ink, 0 for full ink; or the differences from that of the first page, modulo 256. The
// print's colors are computed from them with the tables of the ink model.
inline constexpr char kProofScript[] = R"js('use strict';
const $ = id => document.getElementById(id);
const job = JSON.parse($('job').textContent);
const inkBoxes = [...document.querySelectorAll('#inks input')];
const shown = new Uint8Array(job.steps + 1);
job.shownFrom.forEach((first, sample) => shown.fill(sample, first));
const light = job.light.map(table => Float32Array.from(table, part => part / job.steps));
const heat = Array.from({length: 401}, (_, percent) => {
  const t = percent / 400;
  return [255 * Math.min(1, 2.2 - 2 * t), 255 * Math.max(0, 1 - 1.6 * t), 255 * Math.max(0, 1 - 4 * t)];
});
let page = 1, zoom = 0, turn = 0, kept = null, first = null;

async function decode(picture) {
  const image = new Image();
  image.src = 'data:image/png;base64,' + $('picture' + picture).textContent;
  await image.decode();
  const width = image.naturalWidth, height = image.naturalHeight / 4, planes = [];
  const canvas = document.createElement('canvas');
  canvas.width = width; canvas.height = height;
  const context = canvas.getContext('2d', {willReadFrequently: true});
  for (let ink = 0; ink < 4; ++ink) {
    context.drawImage(image, 0, ink * height, width, height, 0, 0, width, height);
    const samples = context.getImageData(0, 0, width, height).data;
    planes.push(Uint8Array.from({length: width * height}, (_, i) => samples[4 * i]));
  }
  return {picture, width, height, planes};
}

async function inksOf(picture) {
  if (kept && kept.picture === picture) return kept;
  const inks = await decode(picture);
  if (job.fromFirst[picture]) {
    first = first || await decode(0);
    inks.planes.forEach((plane, ink) => { for (let i = 0; i < plane.length; ++i) plane[i] += first.planes[ink][i]; });
  }
  return kept = inks;
}

function paintInks({planes}, out, on) {
  for (let i = 0, o = 0; o < out.length; ++i, o += 4) {
    let red = 1, green = 1, blue = 1;
    for (let ink = 0; ink < 4; ++ink) {
      const gray = planes[ink][i];
      if (gray === 255 || !on[ink]) continue;
      red *= light[ink][3 * gray]; green *= light[ink][3 * gray + 1]; blue *= light[ink][3 * gray + 2];
    }
    out[o] = shown[red * job.steps + .5 | 0];
    out[o + 1] = shown[green * job.steps + .5 | 0];
    out[o + 2] = shown[blue * job.steps + .5 | 0];
    out[o + 3] = 255;
  }
}

function heatOf(percent) { return percent > job.limit ? [255, 0, 255] : heat[Math.min(400, Math.round(percent))]; }

function paintHeat({planes}, out, on) {
  for (let i = 0, o = 0; o < out.length; ++i, o += 4) {
    let total = 0;
    for (let ink = 0; ink < 4; ++ink) if (on[ink]) total += 255 - planes[ink][i];
    [out[o], out[o + 1], out[o + 2]] = heatOf(total / 2.55);
    out[o + 3] = 255;
  }
}

function paint(inks, canvas, paintPixels, on) {
  canvas.width = inks.width; canvas.height = inks.height;
  const context = canvas.getContext('2d');
  const pixels = context.createImageData(inks.width, inks.height);
  paintPixels(inks, pixels.data, on);
  context.putImageData(pixels, 0, 0);
}

// Keeps the middle of the frame at the same place of the page.
function resize() {
  const canvas = $('canvas'), frame = $('frame');
  const middle = [(frame.scrollLeft + frame.clientWidth / 2) / frame.scrollWidth,
    (frame.scrollTop + frame.clientHeight / 2) / frame.scrollHeight];
  const fit = Math.min((frame.clientWidth - 20) / canvas.width, innerHeight * .75 / canvas.height);
  const scale = zoom === 0 ? fit : fit * 1.5 ** zoom;
  canvas.style.width = canvas.width * scale + 'px';
  canvas.style.imageRendering = scale > 2 ? 'pixelated' : 'auto';
  frame.scrollLeft = middle[0] * frame.scrollWidth - frame.clientWidth / 2;
  frame.scrollTop = middle[1] * frame.scrollHeight - frame.clientHeight / 2;
  $('zoom').textContent = zoom === 0 ? 'fit' : Math.round(100 * scale / fit) + ' %';
}

async function show() {
  const mine = ++turn, sheet = job.sheets[job.pages[page - 1]];
  $('page').value = page;
  for (const button of $('pages').children) {
    if (Number(button.dataset.page) === page) button.setAttribute('aria-current', 'page');
    else button.removeAttribute('aria-current');
  }
  $('note').textContent = sheet === null ? 'This page has no picture here; orvexview --page ' + page + ' draws it.' : '';
  $('canvas').hidden = sheet === null;
  if (sheet === null) return;
  const inks = await inksOf(sheet);
  if (mine !== turn) return;
  const asHeat = $('show').value === 'heat';
  $('scale').hidden = !asHeat;
  paint(inks, $('canvas'), asHeat ? paintHeat : paintInks, inkBoxes.map(box => box.checked));
  resize();
  $('canvas').dataset.drawn = mine;
}

function go(to) {
  page = Math.max(1, Math.min(job.pages.length, to || 1));
  zoom = 0;
  return show();
}

function choose() {
  const choice = $('show').value;
  if (choice !== 'some') inkBoxes.forEach((box, ink) => box.checked = choice === 'all' || choice === 'heat' || choice === String(ink));
  return show();
}

function drawScale() {
  const canvas = $('scale').querySelector('canvas');
  canvas.width = 401; canvas.height = 1;
  const context = canvas.getContext('2d');
  for (let percent = 0; percent <= 400; ++percent) {
    context.fillStyle = 'rgb(' + heatOf(percent).map(Math.round) + ')';
    context.fillRect(percent, 0, 1, 1);
  }
}

async function drawThumbnail(button) {
  const sheet = job.sheets[job.pages[button.dataset.page - 1]];
  if (sheet === null) return;
  const before = kept, whole = document.createElement('canvas'), canvas = button.querySelector('canvas');
  const inks = await inksOf(sheet);
  kept = before;
  paint(inks, whole, paintInks, [true, true, true, true]);
  const scale = 168 / Math.max(whole.width, whole.height);
  canvas.width = Math.max(1, whole.width * scale); canvas.height = Math.max(1, whole.height * scale);
  const context = canvas.getContext('2d');
  context.imageSmoothingQuality = 'high';
  context.drawImage(whole, 0, 0, canvas.width, canvas.height);
}

// Thumbnails are drawn one after the other, once they come into view.
let thumbnails = Promise.resolve();
const watcher = new IntersectionObserver(entries => {
  for (const entry of entries) {
    if (!entry.isIntersecting) continue;
    watcher.unobserve(entry.target);
    thumbnails = thumbnails.then(() => drawThumbnail(entry.target));
  }
}, {root: $('pages'), rootMargin: '100px'});
for (let number = 1; job.pages.length > 1 && number <= Math.min(job.pages.length, 2000); ++number) {
  const button = document.createElement('button');
  button.dataset.page = number;
  button.append(document.createElement('canvas'), String(number));
  button.onclick = () => go(number);
  $('pages').append(button);
  watcher.observe(button);
}

$('previous').onclick = () => go(page - 1);
$('next').onclick = () => go(page + 1);
$('page').onchange = () => go(Number($('page').value));
$('show').onchange = choose;
inkBoxes.forEach(box => box.onchange = () => { if ($('show').value !== 'heat') $('show').value = 'some'; return show(); });
$('closer').onclick = () => { zoom = Math.min(zoom + 1, 8); resize(); };
$('farther').onclick = () => { zoom = Math.max(zoom - 1, -4); resize(); };
$('fit').onclick = () => { zoom = 0; resize(); };
onresize = resize;
drawScale();
show();
)js";

}  // namespace orvex::tools::view
