// The test of a proof, within the browser. Returns what fails. `expectedPicture` is a picture of page 1 as a data: URL.
(async () => {
  const tick = () => new Promise(done => setTimeout(done, 5));
  const canvas = $('canvas'), copy = document.createElement('canvas');
  const copied = copy.getContext('2d', {willReadFrequently: true});
  const pixels = () => {
    copy.width = canvas.width; copy.height = canvas.height;
    copied.drawImage(canvas, 0, 0);
    return copied.getImageData(0, 0, copy.width, copy.height).data;
  };
  const after = async act => {
    const before = canvas.dataset.drawn;
    act();
    while (canvas.dataset.drawn === before) await tick();
    return pixels();
  };
  const choose = value => { $('show').value = value; $('show').dispatchEvent(new Event('change')); };
  const every = (data, test) => { for (let i = 0; i < data.length; i += 4) if (!test(data[i], data[i + 1], data[i + 2])) return false; return true; };
  const white = (r, g, b) => r === 255 && g === 255 && b === 255;
  const failures = [];
  const check = (name, passed) => { if (!passed) failures.push(name); };

  while (!canvas.dataset.drawn) await tick();
  const image = new Image();
  image.src = expectedPicture;
  await image.decode();
  const other = document.createElement('canvas');
  other.width = image.naturalWidth; other.height = image.naturalHeight;
  const context = other.getContext('2d');
  context.drawImage(image, 0, 0);
  const expected = context.getImageData(0, 0, other.width, other.height).data, all = pixels();
  let worst = expected.length === all.length ? 0 : 255;
  all.forEach((sample, i) => { worst = Math.max(worst, Math.abs(sample - expected[i])); });
  check('the print has the colors of orvexview, worst ' + worst, worst <= 1);

  const boxes = [...document.querySelectorAll('#inks input')];
  const noBlack = await after(() => boxes[0].click());
  check('black can be switched off', $('show').value === 'some' && !every(noBlack, (r, g, b) => false) && noBlack.some((sample, i) => sample !== all[i]));
  for (const ink of [1, 2]) await after(() => boxes[ink].click());
  const yellow = await after(() => boxes[1].click()) && await after(() => boxes[1].click());
  check('yellow alone is yellow', every(yellow, (r, g, b) => b <= r) && !every(yellow, white));
  check('without inks there is paper', every(await after(() => boxes[3].click()), white));
  const black = await after(() => choose('0'));
  check('a single ink', every(black, (r, g, b) => r === g && g === b) && !every(black, white) && boxes[0].checked && !boxes[3].checked);
  const heat = await after(() => choose('heat'));
  check('total ink with its limit', !$('scale').hidden && !every(heat, (r, g, b) => !(r === 255 && g === 0 && b === 255)));
  const again = await after(() => choose('all'));
  check('all inks again', $('scale').hidden && again.every((sample, i) => sample === all[i]));

  const width = parseFloat(canvas.style.width);
  $('closer').click();
  check('larger', parseFloat(canvas.style.width) > width);
  for (let i = 0; i < 4; ++i) $('closer').click();
  const frame = $('frame');
  check('closer to the middle', frame.scrollLeft > 100 && Math.abs(2 * frame.scrollLeft + frame.clientWidth - frame.scrollWidth) < 8);
  $('fit').click();
  check('fit', parseFloat(canvas.style.width) === width);
  await after(() => $('next').click());
  check('the next page', $('page').value === '2' && $('pages').children[1].getAttribute('aria-current') === 'page');
  const second = pixels();
  check('the second page, made of the first', job.fromFirst[1] && second.every((sample, i) => sample === all[i]));
  await after(() => $('pages').children[0].click());
  check('a thumbnail leads to its page', $('page').value === '1');
  await thumbnails;
  check('thumbnails', $('pages').querySelector('canvas').height === 168);
  return failures;
})()
