<%@ Component="Ostrakan.Class30" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>数据列表</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function db_delete(id) {
  if (confirm('确定要删除这条记录吗？')) location.href = 'db_ok.asp?action=del&id=' + id;
}
function selectAll(box) {
  var boxes = document.getElementsByName('id');
  for (var i = 0; i < boxes.length; i++) boxes[i].checked = box.checked;
}
function check_delete() {
  var boxes = document.getElementsByName('id');
  for (var i = 0; i < boxes.length; i++) {
    if (boxes[i].checked) return confirm('确定要删除选中的记录吗？');
  }
  alert('没有选择删除的纪录！');
  return false;
}
</script>
</head>
<body class="content">
<h3>数据列表</h3>
<form accept-charset="gb18030" name="list" id="list" method="get" action="db_ok.asp" onsubmit="return check_delete()">
<input type="hidden" name="action" value="alldel">
<div class="records"><% InitFunction4 %></div>
<p class="batch"><label><input type="checkbox" id="chkall" onclick="selectAll(this)"> 全选</label>
<input type="submit" value="删除选中记录" class="button"></p>
</form>
</body>
</html>
