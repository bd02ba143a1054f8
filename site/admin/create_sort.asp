<%@ Component="Ostrakan.Class22" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>生成分类页面</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function selectAll(box) {
  var boxes = document.querySelectorAll('input[type=checkbox][name=id]');
  for (var i = 0; i < boxes.length; i++) boxes[i].checked = box.checked;
}
function ticked() {
  var boxes = document.querySelectorAll('input[type=checkbox][name=id]');
  for (var i = 0; i < boxes.length; i++) if (boxes[i].checked) return true;
  return false;
}
function check_generate() {
  if (!ticked()) { alert('请选择要生成的分类！'); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>生成HTML - 一级分类</h3>
<form accept-charset="gb18030" name="list" id="list" method="post" action="create_sort_one_instruction.asp" onsubmit="return check_generate()">
<div class="categories"><% InitFunction4 %></div>
<p class="batch"><label><input type="checkbox" id="chkall" onclick="selectAll(this)"> 全选</label>
<input type="submit" value="生成选中分类" class="button"> <span class="hint">连同它们的二级分类一起生成。</span></p>
</form>
</body>
</html>
